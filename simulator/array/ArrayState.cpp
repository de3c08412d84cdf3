#include "array/ArrayState.h"

#include <algorithm>
#include <cstdio>

#include "array/Outcome.h"
#include "array/Refusal.h"

namespace Korvel::Sim {
namespace {

template <typename Build>
ArrayState::Document Kept(ArrayState::Document& kept, Build build) {
    if (!kept) {
        kept = std::make_shared<const std::string>(build());
    }
    return kept;
}

template <typename List>
auto FindName(List& list, const std::string& name) {
    return std::find_if(list.begin(), list.end(), [&](const auto& entry) { return entry.name == name; });
}

template <typename List>
std::unordered_set<std::string> DisplayNames(const List& list) {
    std::unordered_set<std::string> names;
    for (const auto& entry : list) {
        names.insert(entry.displayName);
    }
    return names;
}

}  // namespace

ArrayState::ArrayState(Inventory inventory) {
    SetInventory(std::move(inventory));
}

Inventory ArrayState::Held() const {
    const Lock lock(mutex);
    return held;
}

void ArrayState::SetInventory(Inventory inventory) {
    const Lock lock(mutex);
    held = std::move(inventory);
    if (held.nextNumber == 0) {
        held.nextNumber = held.volumes.size() + held.snapshots.size() + held.servers.size() + 1;
    }
    serverListing.reset();
    driveListing.reset();
    snapshotListings.clear();
    VolumesChanged();
}

ArrayState::Document ArrayState::Volumes() {
    const Lock lock(mutex);
    return Kept(volumeListing, [&] { return Replies::Volumes(held.volumes); });
}

ArrayState::Document ArrayState::Servers() {
    const Lock lock(mutex);
    return Kept(serverListing, [&] { return Replies::Servers(held.servers); });
}

ArrayState::Document ArrayState::Drives() {
    const Lock lock(mutex);
    return Kept(driveListing, [&] { return Replies::Drives(held.drives); });
}

ArrayState::Document ArrayState::Snapshots(const std::string& group) {
    const Lock lock(mutex);
    RequireGroup(group);
    return Kept(snapshotListings[group], [&] {
        const auto snapshots = held.snapshots.find(group);
        return Replies::Snapshots(snapshots == held.snapshots.end() ? std::vector<Inventory::Snapshot>()
                                                                    : snapshots->second);
    });
}

Outcome ArrayState::CreateSnapshotSet(const Form& form) {
    const Lock lock(mutex);
    std::unordered_set<std::string> taken;
    for (const auto& [group, snapshots] : held.snapshots) {
        taken.merge(DisplayNames(snapshots));
    }
    std::vector<std::pair<std::string, std::string>> pairs;
    for (std::size_t number = 1;; ++number) {
        const std::string key = "snapshots_set_" + std::to_string(number);
        if (!form.Has(key + "_name") && !form.Has(key + "_cg")) {
            break;
        }
        const auto& [name, group] = pairs.emplace_back(form.Required(key + "_name"), form.Required(key + "_cg"));
        RequireGroup(group);
        if (!taken.insert(name).second) {
            throw Refusal("Snapshot " + name + " exists already");
        }
    }
    if (pairs.empty()) {
        throw Refusal("The snapshot set is empty");
    }
    if (form.Size() != 2 * pairs.size()) {
        throw Refusal("The snapshot set is not numbered from 1 without gaps");
    }
    Outcome outcome;
    for (const auto& [displayName, group] : pairs) {
        outcome.snapshots.push_back(NextName("snap"));
        held.snapshots[group].push_back({outcome.snapshots.back(), displayName});
        snapshotListings.erase(group);
    }
    return outcome;
}

Outcome ArrayState::DeleteSnapshot(const std::string& name) {
    const Lock lock(mutex);
    for (auto& [group, snapshots] : held.snapshots) {
        if (const auto snapshot = FindName(snapshots, name); snapshot != snapshots.end()) {
            snapshots.erase(snapshot);
            snapshotListings.erase(group);
            return {.names = {{"snapshot-name", name}}, .snapshots = {}};
        }
    }
    throw Refusal("Snapshot " + name + " does not exist");
}

Outcome ArrayState::CloneGroup(const std::string& group, const Form& form) {
    const Lock lock(mutex);
    RequireGroup(group);
    RequireSnapshotOf(group, form.Required("snapshot"));
    const std::string& name = form.Required("name");
    form.Required("timeout");
    const auto taken = DisplayNames(held.volumes);
    std::vector<Inventory::Volume> clones;
    for (const auto& volume : held.volumes) {
        if (volume.group == group) {
            const std::string displayName = clones.empty() ? name : name + "-" + std::to_string(clones.size() + 1);
            if (taken.contains(displayName)) {
                throw Refusal("Volume " + displayName + " exists already");
            }
            clones.emplace_back().displayName = displayName;
        }
    }
    const std::string newGroup = NextName("cg");
    for (auto& clone : clones) {
        clone.name = NextName("vol");
        const std::string digits = clone.name.substr(4);
        clone.ieeeId = held.volumes.front().ieeeId.substr(0, 12) + "c10e" + std::string(8, '0') + digits;
        clone.productId = digits + "c-KV3";
        clone.group = newGroup;
        held.volumes.push_back(std::move(clone));
    }
    VolumesChanged();
    return {.names = {{"cg-name", newGroup}}, .snapshots = {}};
}

Outcome ArrayState::RollBackGroup(const std::string& group, const Form& form) {
    const Lock lock(mutex);
    RequireGroup(group);
    const std::string& snapshot = form.Required("snapname");
    RequireSnapshotOf(group, snapshot);
    form.Required("timeout");
    for (auto& volume : held.volumes) {
        if (volume.group == group) {
            volume.rolledBackTo = snapshot;
        }
    }
    VolumesChanged();
    return {.names = {{"cg-name", group}}, .snapshots = {}};
}

Outcome ArrayState::DeleteVolume(const std::string& name) {
    const Lock lock(mutex);
    const Inventory::Volume& volume = FindVolume(name);
    if (!volume.mappedTo.empty()) {
        throw Refusal("Volume " + name + " is mapped to server " + volume.mappedTo.front());
    }
    const auto inGroup = [&](const auto& other) { return other.group == volume.group; };
    const auto snapshots = held.snapshots.find(volume.group);
    if (snapshots != held.snapshots.end() && !snapshots->second.empty() &&
        std::count_if(held.volumes.begin(), held.volumes.end(), inGroup) == 1) {
        throw Refusal("Volume " + name + " is the last one of group " + volume.group + ", which has snapshots");
    }
    held.volumes.erase(FindName(held.volumes, name));
    VolumesChanged();
    return {.names = {{"volume-name", name}}, .snapshots = {}};
}

Outcome ArrayState::CreateServer(const Form& form) {
    const Lock lock(mutex);
    const std::string& displayName = form.Required("display_name");
    const std::string& address = form.Required("iscsi");
    const std::string& iqn = form.Required("iqn");
    form.RequireYesOrNo("ipsec");
    form.RequireYesOrNo("force");
    for (const auto& server : held.servers) {
        if (server.iqn == iqn || server.displayName == displayName) {
            throw Refusal("Server " + server.name + " has this name or initiator already");
        }
    }
    const std::string name = NextName("srv");
    held.servers.push_back({name, displayName, iqn, address});
    serverListing.reset();
    return {.names = {{"server-name", name}}, .snapshots = {}};
}

Outcome ArrayState::AttachVolume(const std::string& name, const Form& form) {
    const Lock lock(mutex);
    RequireServer(name);
    if (form.Required("id") != name) {
        throw Refusal("Field id names another server than the path");
    }
    Inventory::Volume& volume = FindVolume(form.Required("volume_name"));
    form.RequireYesOrNo("readonly");
    form.RequireYesOrNo("force");
    if (std::count(volume.mappedTo.begin(), volume.mappedTo.end(), name) != 0) {
        throw Refusal("Volume " + volume.name + " is mapped to server " + name + " already");
    }
    volume.mappedTo.push_back(name);
    VolumesChanged();
    return {.names = {{"volume-name", volume.name}}, .snapshots = {}};
}

Outcome ArrayState::DetachVolume(const std::string& name, const Form& form) {
    const Lock lock(mutex);
    Inventory::Volume& volume = FindVolume(name);
    const std::string& server = form.Required("servers");
    RequireServer(server);
    if (std::erase(volume.mappedTo, server) == 0) {
        throw Refusal("Volume " + name + " is not mapped to server " + server);
    }
    VolumesChanged();
    return {.names = {{"volume-name", name}}, .snapshots = {}};
}

std::string ArrayState::NextName(const char* prefix) {
    char name[32];
    do {
        static_cast<void>(
            std::snprintf(name, sizeof name, "%s-%08llx", prefix, static_cast<unsigned long long>(held.nextNumber++)));
    } while (IsTaken(name));  // a state that was set may hold any names
    return name;
}

bool ArrayState::IsTaken(const std::string& name) const {
    return FindName(held.volumes, name) != held.volumes.end() || FindName(held.servers, name) != held.servers.end() ||
           std::any_of(held.volumes.begin(), held.volumes.end(),
                       [&](const auto& volume) { return volume.group == name; }) ||
           std::any_of(held.snapshots.begin(), held.snapshots.end(),
                       [&](const auto& group) { return FindName(group.second, name) != group.second.end(); });
}

Inventory::Volume& ArrayState::FindVolume(const std::string& name) {
    const auto volume = FindName(held.volumes, name);
    if (volume == held.volumes.end()) {
        throw Refusal("Volume " + name + " does not exist");
    }
    return *volume;
}

void ArrayState::RequireServer(const std::string& name) const {
    if (FindName(held.servers, name) == held.servers.end()) {
        throw Refusal("Server " + name + " does not exist");
    }
}

void ArrayState::RequireGroup(const std::string& group) {
    if (!groups) {
        groups.emplace();
        for (const auto& volume : held.volumes) {
            groups->insert(volume.group);
        }
    }
    if (!groups->contains(group)) {
        throw Refusal("Consistency group " + group + " does not exist");
    }
}

void ArrayState::RequireSnapshotOf(const std::string& group, const std::string& name) {
    const auto snapshots = held.snapshots.find(group);
    if (snapshots == held.snapshots.end() || FindName(snapshots->second, name) == snapshots->second.end()) {
        throw Refusal("Snapshot " + name + " of consistency group " + group + " does not exist");
    }
}

void ArrayState::VolumesChanged() {
    volumeListing.reset();
    groups.reset();
}

}  // namespace Korvel::Sim
