#pragma once

#include <string>

namespace Korvel {

/// One volume as the array's listing tells it.
struct KVolumeRecord {
    std::string productID;  ///< up to its first "-"
    std::string name;
    std::string displayName;
    std::string ieeeID;
    std::string cgName;
};

}  // namespace Korvel
