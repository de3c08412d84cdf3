#include "core/ProviderCore.h"

#include <KorvelAccessLibrary.h>

#include <algorithm>
#include <ctime>
#include <list>
#include <thread>
#include <utility>

#include "core/LibraryCalls.h"
#include "core/LibraryUse.h"

namespace VssExample {
namespace {

using Kind = ProviderError::Kind;
using State = SnapshotSet::State;

}  // namespace

ProviderCore::ProviderCore(Log log, std::function<std::string()> initiatorName, Patience patience)
    : writeLog(std::move(log)), hostInitiator(std::move(initiatorName)), waits(patience) {}

ProviderCore::~ProviderCore() {
    OnUnload(true);
}

void ProviderCore::OnLoad() {
    const std::lock_guard lock(mutex);
    if (loaded) {
        return;
    }
    BeginLibraryUse();
    loaded = true;
    Korvel::KAccessLayer layer;
    if (layer.DiscoverArrays() != Korvel::KStatusSuccess) {
        writeLog("not all arrays could be read from the registry: korvelctl config check tells why");
    }
    std::list<Korvel::KArray*> arrays;
    layer.GetArrays(arrays);
    for (Korvel::KArray* array : arrays) {
        std::string* address = nullptr;
        array->GetIPAddress(address);
        workers.push_back(std::make_unique<ArrayWorker>(*address));
    }
}

bool ProviderCore::OnUnload(bool forced) {
    const std::lock_guard lock(mutex);
    if (!loaded) {
        return true;
    }
    UndoUnfinished(forced);
    bool ended = true;
    for (const auto& worker : workers) {
        if (!worker->Stop(waits.commit)) {
            writeLog("array " + worker->Address() + " has not answered yet: its thread goes on");
            ended = false;
        }
    }
    workers.clear();
    servers.clear();
    loaded = false;
    if (ended) {
        EndLibraryUse();  // never while a request runs
    }
    return ended;
}

ArrayWorker& ProviderCore::WorkerOf(const std::string& address) {
    const auto found =
        std::find_if(workers.begin(), workers.end(), [&](const auto& worker) { return worker->Address() == address; });
    if (found == workers.end()) {
        throw ProviderError(Kind::NotFound, "array " + address + " is not configured");
    }
    return **found;
}

FoundVolume ProviderCore::Find(const std::string& id) const {
    return FindVolume(workers, id, waits.ordinary, writeLog);
}

bool ProviderCore::AreLunsSupported(const std::vector<std::string>& ids) {
    const std::lock_guard lock(mutex);
    return !ids.empty() &&
           std::all_of(ids.begin(), ids.end(), [&](const std::string& id) { return !Find(id).array.empty(); });
}

SnapshotSet& ProviderCore::Require(const std::string& setId, State state, const char* call) {
    const auto set = sets.find(setId);
    if (set == sets.end()) {
        throw ProviderError(Kind::BadState, std::string(call) + ": there is no snapshot set " + setId);
    }
    if (set->second.state != state) {
        throw ProviderError(Kind::BadState, std::string(call) + ": it is not the turn of snapshot set " + setId);
    }
    return set->second;
}

void ProviderCore::BeginPrepareSnapshot(const std::string& setId, const std::string& snapshotId,
                                        const std::vector<std::string>& ids) {
    const std::lock_guard lock(mutex);
    if (!loaded) {
        throw ProviderError(Kind::BadState, "BeginPrepareSnapshot: the provider is not loaded");
    }
    if (sets.contains(setId)) {
        Require(setId, State::Preparing, "BeginPrepareSnapshot");
    }
    std::vector<SnapshotItem> items;
    for (const std::string& id : ids) {
        const FoundVolume found = Find(id);
        if (found.array.empty()) {
            throw ProviderError(Kind::NotFound, "LUN " + id + " is a volume of no array that is configured");
        }
        // A clone is made of a whole group: with two volumes of one group in a set there would be two clones of each.
        const auto taken = [&](const SnapshotItem& item) {
            return item.array == found.array && item.group == found.group;
        };
        if (std::any_of(items.begin(), items.end(), taken) ||
            (sets.contains(setId) && std::any_of(sets[setId].items.begin(), sets[setId].items.end(), taken))) {
            throw ProviderError(Kind::Veto,
                                "volume " + found.volume + " shares its consistency group with another one of the set");
        }
        items.push_back({snapshotId, found.array, id, found.volume, found.group, "", "", "", ""});
    }
    auto& known = sets[setId].items;
    known.insert(known.end(), items.begin(), items.end());
}

/// @return this host's identifier on the array
std::string ProviderCore::FindThisHost(const std::string& address, const std::string& initiator) {
    const auto server = std::make_shared<std::string>();
    WorkerOf(address).Run(
        [server, initiator](Korvel::KArray& array) {
            if (array.GetServerIDByIQN(initiator, *server) != Korvel::KStatusSuccess) {
                RequireDone(array.GetServerIDByIQNFromArray(initiator, *server), "registering this host");
            }
        },
        waits.ordinary);
    return *server;
}

void ProviderCore::EndPrepareSnapshots(const std::string& setId) {
    const std::lock_guard lock(mutex);
    SnapshotSet& set = Require(setId, State::Preparing, "EndPrepareSnapshots");
    try {
        const std::string initiator = hostInitiator();
        for (const SnapshotItem& item : set.items) {
            if (!servers.contains(item.array)) {
                servers[item.array] = FindThisHost(item.array, initiator);
            }
        }
        set.state = State::Prepared;
    } catch (const std::exception&) {
        UndoAndRethrow(setId);
    }
}

void ProviderCore::PreCommitSnapshots(const std::string& setId) {
    const std::lock_guard lock(mutex);
    SnapshotSet& set = Require(setId, State::Prepared, "PreCommitSnapshots");
    AwaitFreshNames(set);
    set.state = State::Ready;
}

/// The names of snapshots hold a number that changes by the second only, and an array refuses a name that it has. So
/// two sets of one volume are not taken in the same second; the wait is shorter than one, and writers still write.
void ProviderCore::AwaitFreshNames(const SnapshotSet& set) {
    for (const auto& [otherId, other] : sets) {
        const auto isShared = [&items = other.items](const SnapshotItem& item) {
            return std::any_of(items.begin(), items.end(), [&](const SnapshotItem& of) {
                return of.array == item.array && of.volume == item.volume;
            });
        };
        if (std::any_of(set.items.begin(), set.items.end(), isShared)) {
            while (std::time(nullptr) ==
                   other.taken) {  // the clock that the library draws from; others run ahead of it
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
        }
    }
}

void ProviderCore::CommitSnapshots(const std::string& setId) {
    const std::lock_guard lock(mutex);
    SnapshotSet& set = Require(setId, State::Ready, "CommitSnapshots");
    try {
        std::map<std::string, ArrayCommit> commits;
        for (SnapshotItem& item : set.items) {
            commits.try_emplace(item.array, WorkerOf(item.array), writeLog).first->second.Add(item);
        }
        TakeSnapshots(commits);
        set.taken = std::time(nullptr);
        set.state = State::Committed;
    } catch (const std::exception&) {
        UndoAndRethrow(setId);
    }
}

/// On all arrays at once, and no longer than writers can hold still.
void ProviderCore::TakeSnapshots(std::map<std::string, ArrayCommit>& commits) {
    for (auto& [address, commit] : commits) {
        commit.Begin();
    }
    const auto deadline = std::chrono::steady_clock::now() + waits.commit;
    for (auto& [address, commit] : commits) {
        commit.Await(deadline);
    }
    std::string failures;
    for (auto& [address, commit] : commits) {
        failures += commit.Finish();
    }
    if (!failures.empty() || commits.empty()) {
        throw ProviderError(Kind::Veto, "the snapshots could not be taken" + failures);
    }
}

void ProviderCore::Clone(SnapshotItem& item) {
    const auto made = std::make_shared<SnapshotItem>(item);
    try {
        WorkerOf(item.array)
            .Run(
                [made](Korvel::KArray& array) {
                    Korvel::KVolume* clone = nullptr;
                    RequireDone(array.CloneVolume(made->group, made->snapshot, clone), "cloning " + made->snapshot);
                    clone->GetVolumeName(made->clone);
                    std::string* id = nullptr;
                    clone->GetVolumeID(id);  // the IEEE identifier, as after a search for it
                    made->cloneId = *id;
                },
                waits.ordinary);
    } catch (const std::exception& error) {
        writeLog("array " + item.array + " may keep a volume whose display name begins with " + item.snapshot +
                 "_: " + ReasonOf(error));
        throw;
    }
    item = *made;
}

void ProviderCore::PostCommitSnapshots(const std::string& setId) {
    const std::lock_guard lock(mutex);
    SnapshotSet& set = Require(setId, State::Committed, "PostCommitSnapshots");
    try {
        for (SnapshotItem& item : set.items) {
            Clone(item);
        }
        set.state = State::Cloned;
    } catch (const std::exception&) {
        UndoAndRethrow(setId);
    }
}

std::vector<std::string> ProviderCore::GetTargetLuns(const std::vector<std::string>& sources) {
    const std::lock_guard lock(mutex);
    std::vector<std::string> targets;
    for (const std::string& source : sources) {
        std::string target;
        for (const auto& [setId, set] : sets) {
            for (const SnapshotItem& item : set.items) {
                target = set.state == State::Cloned && item.sourceId == source ? item.cloneId : target;
            }
        }
        if (target.empty()) {
            throw ProviderError(Kind::BadState, "GetTargetLuns: no snapshot of LUN " + source + " has been committed");
        }
        targets.push_back(target);
    }
    return targets;
}

ProviderCore::Place ProviderCore::PlaceOf(const std::string& target) {
    for (auto set = sets.begin(); set != sets.end(); ++set) {
        auto& items = set->second.items;
        const auto item =
            std::find_if(items.begin(), items.end(), [&](const auto& of) { return of.cloneId == target; });
        if (item != items.end() && !target.empty()) {
            return {set, item};
        }
    }
    throw ProviderError(Kind::NotFound, "LUN " + target + " is no volume that was made of a snapshot");
}

void ProviderCore::LocateLuns(const std::vector<std::string>& targets) {
    const std::lock_guard lock(mutex);
    for (const std::string& target : targets) {
        const Place place = PlaceOf(target);
        SnapshotItem& item = *place.item;
        item.server = servers[item.array];  // before the request: a reply that is lost may have mapped it
        try {
            WorkerOf(item.array)
                .Run([clone = item.clone, server = item.server](
                         Korvel::KArray& array) { RequireDone(array.AttachVolume(clone, server), "mapping " + clone); },
                     waits.ordinary);
        } catch (const std::exception&) {
            UndoAndRethrow(std::string(place.set->first));
        }
    }
}

void ProviderCore::OnLunEmpty(const std::string& target) {
    const std::lock_guard lock(mutex);
    const Place place = PlaceOf(target);
    Remove(*place.item);
    place.set->second.items.erase(place.item);
    if (place.set->second.items.empty()) {
        sets.erase(place.set);
    }
}

void ProviderCore::AbortSnapshots(const std::string& setId) {
    const std::lock_guard lock(mutex);
    if (!sets.contains(setId)) {
        throw ProviderError(Kind::NotFound, "AbortSnapshots: there is no snapshot set " + setId);
    }
    Undo(setId);
}

/// Removes what was made of one volume, last things first. What fails is logged and does not keep the rest.
void ProviderCore::Remove(const SnapshotItem& item) {
    struct Step {
        const std::string& made;
        std::string what;
        ArrayWorker::Task task;
    };
    const Step steps[] = {
        {item.server, "the mapping of volume " + item.clone,
         [item](Korvel::KArray& array) { RequireDone(array.DetachVolume(item.clone, item.server), "unmapping"); }},
        {item.clone, "volume " + item.clone,
         [item](Korvel::KArray& array) { RequireDone(array.DeleteVolume(item.clone), "deleting"); }},
        {item.snapshot, "snapshot " + item.snapshot,
         [item](Korvel::KArray& array) { DeleteSnapshot(array, item.sourceId, item.snapshot); }},
    };
    for (const Step& step : steps) {
        if (step.made.empty()) {
            continue;
        }
        try {
            WorkerOf(item.array).Run(step.task, waits.ordinary);
        } catch (const std::exception& error) {
            writeLog("array " + item.array + " may keep " + step.what + ": " + ReasonOf(error));
        }
    }
}

/// Forgets the sets that have come to their end, whose volumes are the service's, and undoes the others.
void ProviderCore::UndoUnfinished(bool forced) {
    while (!sets.empty()) {
        const auto& [setId, set] = *sets.begin();
        const bool mapped = std::none_of(set.items.begin(), set.items.end(),
                                         [](const SnapshotItem& item) { return item.server.empty(); });
        if (set.state == State::Cloned && (mapped || !forced)) {
            sets.erase(sets.begin());
        } else {
            Undo(std::string(setId));
        }
    }
}

void ProviderCore::Undo(const std::string& setId) {
    const auto set = sets.find(setId);
    const auto& items = set->second.items;
    std::for_each(items.rbegin(), items.rend(), [this](const SnapshotItem& item) { Remove(item); });
    sets.erase(set);
}

/// For handlers: undoes the set and passes on what is being handled, as an error of the provider's.
void ProviderCore::UndoAndRethrow(const std::string& setId) {
    try {
        throw;
    } catch (const ProviderError&) {
        Undo(setId);
        throw;
    } catch (const std::bad_alloc&) {
        Undo(setId);
        throw;
    } catch (const std::exception& error) {
        Undo(setId);
        throw ProviderError(Kind::Veto, ReasonOf(error));
    }
}

}  // namespace VssExample
