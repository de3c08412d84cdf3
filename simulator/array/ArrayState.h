#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_set>

#include "array/Form.h"
#include "array/Inventory.h"
#include "array/Outcome.h"
#include "array/Replies.h"

namespace Korvel::Sim {

/// One array: what it holds, its listings and its commands. Knows nothing of HTTP. Safe to use from many threads.
/// A command that the array refuses throws Refusal and changes nothing.
class ArrayState {
public:
    /// A listing's document; shared, since it may be long and is kept until the state changes.
    using Document = std::shared_ptr<const std::string>;

    /// Takes `inventory` as it is.
    explicit ArrayState(Inventory inventory);

    /// Returns a copy of everything the array holds.
    Inventory Held() const;

    /// Replaces everything the array holds.
    void SetInventory(Inventory inventory);

    /// Returns the volume listing.
    Document Volumes();

    /// Returns the server listing.
    Document Servers();

    /// Returns the drive listing.
    Document Drives();

    /// Returns the listing of the snapshots of `group`. Throws Refusal when there is no such group.
    Document Snapshots(const std::string& group);

    /// Takes the snapshots that the pairs snapshots_set_N_name and snapshots_set_N_cg ask for: all or none.
    Outcome CreateSnapshotSet(const Form& form);

    /// Deletes the snapshot `name`.
    Outcome DeleteSnapshot(const std::string& name);

    /// Makes a new group of new volumes out of a snapshot of `group`; the first volume gets the display name asked for,
    /// those after it the same with "-2", "-3" and so on.
    Outcome CloneGroup(const std::string& group, const Form& form);

    /// Notes on every volume of `group` that it went back to the snapshot asked for.
    Outcome RollBackGroup(const std::string& group, const Form& form);

    /// Deletes the volume `name`, unless it is mapped or the last one of a group that has snapshots.
    Outcome DeleteVolume(const std::string& name);

    /// Registers a host.
    Outcome CreateServer(const Form& form);

    /// Maps the volume asked for to the server `name`.
    Outcome AttachVolume(const std::string& name, const Form& form);

    /// Unmaps the volume `name` from the server asked for.
    Outcome DetachVolume(const std::string& name, const Form& form);

private:
    using Lock = std::lock_guard<std::mutex>;

    std::string NextName(const char* prefix);
    bool IsTaken(const std::string& name) const;
    Inventory::Volume& FindVolume(const std::string& name);
    void RequireServer(const std::string& name) const;
    void RequireGroup(const std::string& group);
    void RequireSnapshotOf(const std::string& group, const std::string& name);
    void VolumesChanged();

    mutable std::mutex mutex;
    Inventory held;
    Document volumeListing;
    Document serverListing;
    Document driveListing;
    std::map<std::string, Document> snapshotListings;
    std::optional<std::unordered_set<std::string>> groups;
};

}  // namespace Korvel::Sim
