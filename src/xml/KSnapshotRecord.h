#pragma once

#include <string>

namespace Korvel {

/// One snapshot as the listing of its consistency group tells it.
struct KSnapshotRecord {
    std::string name;  ///< the snapshot's identifier on the array
    std::string displayName;
};

}  // namespace Korvel
