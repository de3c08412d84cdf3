#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "core/ArrayWorker.h"
#include "core/Log.h"

namespace VssExample {

/// A volume that was looked for.
struct FoundVolume {
    std::string array;   ///< address; empty when no array has it
    std::string volume;  ///< its name
    std::string group;   ///< its consistency group
};

/// Looks for a volume on all arrays at once: first in what they remember, then on the arrays themselves.
/// @param id an IEEE identifier
/// @param patience how long arrays may take
/// @param log where arrays stand that could not be searched
FoundVolume FindVolume(const std::vector<std::unique_ptr<ArrayWorker>>& workers, const std::string& id,
                       std::chrono::milliseconds patience, const Log& log);

}  // namespace VssExample
