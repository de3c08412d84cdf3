#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_set>

#include "KForm.h"
#include "KInventory.h"
#include "KReplies.h"

namespace Korvel {

/// One array: what it holds, its listings and its commands. Knows nothing of HTTP. Safe to use from many threads.
/// A command that the array refuses throws KRefusal and changes nothing.
class KArrayState {
public:
    /// A listing's document; shared, since it may be long and is kept until the state changes.
    using Document = std::shared_ptr<const std::string>;

    /// Takes `inventory` as it is.
    explicit KArrayState(KInventory inventory);

    /// Returns a copy of everything the array holds.
    KInventory Inventory() const;

    /// Replaces everything the array holds.
    void SetInventory(KInventory inventory);

    /// Returns the volume listing.
    Document Volumes();

    /// Returns the server listing.
    Document Servers();

    /// Returns the drive listing.
    Document Drives();

    /// Returns the listing of the snapshots of `group`. Throws KRefusal when there is no such group.
    Document Snapshots(const std::string& group);

    /// Takes the snapshots that the pairs snapshots_set_N_name and snapshots_set_N_cg ask for: all or none.
    KOutcome CreateSnapshotSet(const KForm& form);

    /// Deletes the snapshot `name`.
    KOutcome DeleteSnapshot(const std::string& name);

    /// Makes a new group of new volumes out of a snapshot of `group`; the first volume gets the display name asked for,
    /// those after it the same with "-2", "-3" and so on.
    KOutcome CloneGroup(const std::string& group, const KForm& form);

    /// Notes on every volume of `group` that it went back to the snapshot asked for.
    KOutcome RollBackGroup(const std::string& group, const KForm& form);

    /// Deletes the volume `name`, unless it is mapped or the last one of a group that has snapshots.
    KOutcome DeleteVolume(const std::string& name);

    /// Registers a host.
    KOutcome CreateServer(const KForm& form);

    /// Maps the volume asked for to the server `name`.
    KOutcome AttachVolume(const std::string& name, const KForm& form);

    /// Unmaps the volume `name` from the server asked for.
    KOutcome DetachVolume(const std::string& name, const KForm& form);

private:
    using Lock = std::lock_guard<std::mutex>;

    std::string NextName(const char* prefix);
    KInventory::Volume& FindVolume(const std::string& name);
    void RequireServer(const std::string& name) const;
    void RequireGroup(const std::string& group);
    void RequireSnapshotOf(const std::string& group, const std::string& name);
    void VolumesChanged();

    mutable std::mutex mutex;
    KInventory held;
    Document volumeListing;
    Document serverListing;
    Document driveListing;
    std::map<std::string, Document> snapshotListings;
    std::optional<std::unordered_set<std::string>> groups;
};

}  // namespace Korvel
