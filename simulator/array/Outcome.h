#pragma once

#include <string>
#include <utility>
#include <vector>

namespace Korvel::Sim {

/// What a command has to say besides that it is done.
struct Outcome {
    std::vector<std::pair<const char*, std::string>> names;  ///< element and name of what was made or changed
    std::vector<std::string> snapshots;                      ///< names of the snapshots of a set
};

}  // namespace Korvel::Sim
