#pragma once

#include <string>

namespace Korvel::Ctl {

/// What an array lists of a snapshot.
struct Snapshot {
    std::string group;
    std::string name;
    std::string displayName;
};

}  // namespace Korvel::Ctl
