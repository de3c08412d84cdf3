#include "core/ProviderCore.h"

#include <KorvelAccessLibrary.h>

#include <algorithm>
#include <ctime>
#include <future>
#include <list>
#include <thread>
#include <utility>

namespace VssExample {

namespace {

using Kind = ProviderError::Kind;
using State = SnapshotSet::State;
using Clock = std::chrono::steady_clock;

/// What the library's exceptions say: a KException keeps its text apart from what().
std::string TextOf(const std::exception& error) {
    const auto* failure = dynamic_cast<const Korvel::KException*>(&error);
    return failure == nullptr ? error.what() : failure->ErrorText();
}

/// A status other than success is a failure without a text of its own.
void RequireSuccess(int status, const std::string& what) {
    if (status != Korvel::KStatusSuccess) {
        throw ProviderError(Kind::Veto, what + ": the array's reply held no answer");
    }
}

/// The volume that an earlier search has brought into the array's memory.
Korvel::KVolume& KnownVolume(Korvel::KArray& array, const std::string& id) {
    Korvel::KVolume* volume = nullptr;
    if (array.GetVolumeByID(id, volume) != Korvel::KStatusSuccess) {
        throw ProviderError(Kind::NotFound, "volume " + id + " is not known any more");
    }
    return *volume;
}

void DeleteSnapshot(Korvel::KArray& array, const std::string& sourceId, std::string snapshot) {
    RequireSuccess(KnownVolume(array, sourceId).DeleteSnapshot(snapshot), "deleting snapshot " + snapshot);
}

/// The library's state of the process, which all providers in it share. One that leaves a thread behind never ends its
/// use: the library stays as it is for that thread.
class LibraryUse {
public:
    void Begin() {
        const std::lock_guard lock(mutex);
        if (users++ == 0) {
            Korvel::KAccessLayer::GlobalInit();
        }
    }
    void End() {
        const std::lock_guard lock(mutex);
        if (--users == 0) {
            Korvel::KAccessLayer::GlobalCleanup();
        }
    }

private:
    std::mutex mutex;
    int users = 0;
};

LibraryUse library;

}  // namespace

/// A volume that was looked for.
struct ProviderCore::Found {
    std::string array;  ///< empty when no array has it
    std::string volume;
    std::string group;
};

/// The snapshots of one set on one array. The worker's task shares it, because it may end after everybody has given up
/// on it: then it removes by itself what it has made.
struct ProviderCore::Commit {
    std::string array;
    std::vector<SnapshotItem*> items;  // the set's, of use only to who waits for the task
    std::string anySource;             // a volume of the array: snapshots are deleted through one
    std::list<std::string> volumes;    // the names of all
    std::list<std::string> groups;
    std::mutex mutex;
    bool ended = false;
    bool abandoned = false;
    std::list<std::string> taken;
    std::string failure;

    bool IsAbandoned() {
        const std::lock_guard lock(mutex);
        return abandoned;
    }
    void Take(Korvel::KArray& onArray);
    void RemoveTaken(Korvel::KArray& onArray, const Log& log);
};

/// The one request while writers hold still.
void ProviderCore::Commit::Take(Korvel::KArray& onArray) {
    std::list<std::string*> volumeNames;
    std::list<std::string*> groupNames;
    std::transform(volumes.begin(), volumes.end(), std::back_inserter(volumeNames),
                   [](std::string& name) { return &name; });
    std::transform(groups.begin(), groups.end(), std::back_inserter(groupNames),
                   [](std::string& name) { return &name; });
    std::list<std::string> names;
    std::string text;
    try {
        RequireSuccess(Korvel::KVolume::CreateSnapshotSet(&onArray, volumeNames, groupNames, &names),
                       "the snapshot set");
        if (names.size() != volumes.size()) {
            text =
                "the array reports " + std::to_string(names.size()) + " snapshots of " + std::to_string(volumes.size());
        }
    } catch (const std::exception& error) {
        text = TextOf(error);
    }
    const std::lock_guard lock(mutex);
    taken = std::move(names);
    failure = text;
    ended = true;
}

/// Removes what the array reports to have taken. A reply that was lost names nothing: then only the log can tell.
void ProviderCore::Commit::RemoveTaken(Korvel::KArray& onArray, const Log& log) {
    if (taken.empty()) {
        std::string names;
        for (const std::string& volume : volumes) {
            names += " " + volume;
        }
        log("array " + array + " has not named the snapshots of its set (" + failure + "): it may hold some of" +
            names + ", whose display names end in _ and the volume's name");
    }
    for (const std::string& snapshot : taken) {
        try {
            DeleteSnapshot(onArray, anySource, snapshot);
        } catch (const std::exception& error) {
            log("array " + array + " keeps snapshot " + snapshot + ": " + TextOf(error));
        }
    }
}

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
    library.Begin();
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
        library.End();  // never while a request runs
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

/// Asks all arrays at once, either what they remember or the arrays themselves.
ProviderCore::Found ProviderCore::Find(const std::string& id, bool onArrays) {
    struct Search {
        std::shared_ptr<Found> result;
        std::future<void> done;
    };
    std::vector<Search> searches;
    for (const auto& worker : workers) {
        const auto result = std::make_shared<Found>();
        searches.push_back({result, worker->Post([=, address = worker->Address()](Korvel::KArray& array) {
                                Korvel::KVolume* volume =
                                    nullptr;  // null: a search on the array tells a miss by this pointer
                                const int status = onArrays ? array.GetVolumeByIDFromArray(id, volume)
                                                            : array.GetVolumeByID(id, volume);
                                if (status == Korvel::KStatusSuccess && volume != nullptr) {
                                    volume->GetVolumeName(result->volume);
                                    volume->GetCgID(result->group);
                                    result->array = address;
                                }
                            })});
    }
    Found found;
    const auto deadline = Clock::now() + waits.ordinary;
    for (std::size_t at = 0; at < searches.size(); ++at) {
        try {
            if (!workers[at]->Await(searches[at].done, deadline)) {
                throw ProviderError(Kind::Veto, "it does not answer");
            }
            searches[at].done.get();
            found = searches[at].result->array.empty() ? found : *searches[at].result;
        } catch (const std::exception& error) {
            writeLog("array " + workers[at]->Address() + " could not be searched for " + id + ": " + TextOf(error));
        }
    }
    return found;
}

/// Memory first, then the arrays.
ProviderCore::Found ProviderCore::FindAnywhere(const std::string& id) {
    if (id.empty()) {
        return {};
    }
    const Found known = Find(id, false);
    return known.array.empty() ? Find(id, true) : known;
}

bool ProviderCore::AreLunsSupported(const std::vector<std::string>& ids) {
    const std::lock_guard lock(mutex);
    return !ids.empty() &&
           std::all_of(ids.begin(), ids.end(), [&](const std::string& id) { return !FindAnywhere(id).array.empty(); });
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
        const Found found = FindAnywhere(id);
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
                RequireSuccess(array.GetServerIDByIQNFromArray(initiator, *server), "registering this host");
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
    std::vector<std::shared_ptr<Commit>> commits;
    for (SnapshotItem& item : set.items) {
        auto commit =
            std::find_if(commits.begin(), commits.end(), [&](const auto& of) { return of->array == item.array; });
        if (commit == commits.end()) {
            commits.push_back(std::make_shared<Commit>());
            commit = std::prev(commits.end());
            (*commit)->array = item.array;
        }
        (*commit)->items.push_back(&item);
        (*commit)->anySource = item.sourceId;
        (*commit)->volumes.push_back(item.volume);
        (*commit)->groups.push_back(item.group);
    }
    std::vector<std::future<void>> answers;  // not in the commits: a future holds its task, and that the commit
    answers.reserve(commits.size());
    for (const auto& commit : commits) {
        answers.push_back(WorkerOf(commit->array).Post([commit, log = writeLog](Korvel::KArray& array) {
            if (!commit->IsAbandoned()) {  // it may have waited for its turn behind another request that hung
                commit->Take(array);
            }
            const std::lock_guard taken(commit->mutex);
            if (commit->abandoned && commit->ended) {
                log("array " + commit->array + " has answered too late: its snapshots are removed");
                commit->RemoveTaken(array, log);
            }
        }));
    }
    try {
        FinishCommit(set, commits, answers);
        set.taken = std::time(nullptr);
        set.state = State::Committed;
    } catch (const std::exception&) {
        UndoAndRethrow(setId);
    }
}

/// Waits for the snapshots of all arrays, as long as writers can hold still, and gives up on the others.
void ProviderCore::FinishCommit(SnapshotSet& set, const std::vector<std::shared_ptr<Commit>>& commits,
                                const std::vector<std::future<void>>& answers) {
    const auto deadline = Clock::now() + waits.commit;
    std::string failures;
    for (std::size_t at = 0; at < commits.size(); ++at) {
        WorkerOf(commits[at]->array).Await(answers[at], deadline);
    }
    for (const auto& commit : commits) {
        const std::lock_guard lock(commit->mutex);
        if (!commit->ended) {
            commit->abandoned = true;
            failures += "; array " + commit->array + " does not answer in time";
        } else if (!commit->failure.empty()) {
            failures += "; array " + commit->array + ": " + commit->failure;
            WorkerOf(commit->array).Post([commit, log = writeLog](Korvel::KArray& array) {
                commit->RemoveTaken(array, log);
            });
        } else {
            auto snapshot = commit->taken.begin();  // the array names them in the order of the volumes
            for (SnapshotItem* item : commit->items) {
                item->snapshot = *snapshot++;
            }
        }
    }
    if (!failures.empty() || set.items.empty()) {
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
                    RequireSuccess(array.CloneVolume(made->group, made->snapshot, clone), "cloning " + made->snapshot);
                    clone->GetVolumeName(made->clone);
                    std::string* id = nullptr;
                    clone->GetVolumeID(id);  // the IEEE identifier, as after a search for it
                    made->cloneId = *id;
                },
                waits.ordinary);
    } catch (const std::exception& error) {
        writeLog("array " + item.array + " may keep a volume whose display name begins with " + item.snapshot +
                 "_: " + TextOf(error));
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
                .Run(
                    [clone = item.clone, server = item.server](Korvel::KArray& array) {
                        RequireSuccess(array.AttachVolume(clone, server), "mapping " + clone);
                    },
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
         [item](Korvel::KArray& array) { RequireSuccess(array.DetachVolume(item.clone, item.server), "unmapping"); }},
        {item.clone, "volume " + item.clone,
         [item](Korvel::KArray& array) { RequireSuccess(array.DeleteVolume(item.clone), "deleting"); }},
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
            writeLog("array " + item.array + " may keep " + step.what + ": " + TextOf(error));
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
        throw ProviderError(Kind::Veto, TextOf(error));
    }
}

}  // namespace VssExample
