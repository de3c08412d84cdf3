#pragma once

#include <algorithm>
#include <list>
#include <string>

namespace Korvel {

class KVolume;

/// One snapshot that the library knows. A plain holder: whoever creates it sets its fields.
class KSnapshot {
public:
    /// @param snapID the array's identifier of the snapshot
    /// @throws std::invalid_argument when it is empty
    explicit KSnapshot(const std::string& snapID);
    ~KSnapshot();
    KSnapshot(const KSnapshot&) = delete;
    KSnapshot& operator=(const KSnapshot&) = delete;

    std::string* snapshotID;  ///< owned
    KVolume* volume;          ///< the volume whose list holds the snapshot; not owned, null until it is set
};

/// @return where the first snapshot with this identifier is recorded, or the list's end
inline std::list<KSnapshot*>::const_iterator FindSnapshot(const std::list<KSnapshot*>& snapshots,
                                                          const std::string& snapID) {
    return std::find_if(snapshots.begin(), snapshots.end(), [&](const KSnapshot* snapshot) {
        return snapshot != nullptr && *snapshot->snapshotID == snapID;
    });
}

}  // namespace Korvel
