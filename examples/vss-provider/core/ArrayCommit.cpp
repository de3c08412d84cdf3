#include "core/ArrayCommit.h"

#include <KorvelAccessLibrary.h>

#include <algorithm>
#include <iterator>
#include <list>
#include <mutex>
#include <utility>

#include "core/LibraryCalls.h"

namespace VssExample {

struct ArrayCommit::Request {
    std::string array;
    Log log;
    std::string anySource;  // a volume of the array: snapshots are deleted through one
    std::list<std::string> volumes;
    std::list<std::string> groups;
    std::mutex mutex;  // for what follows
    bool ended = false;
    bool abandoned = false;
    std::list<std::string> taken;
    std::string failure;

    void Perform(Korvel::KArray& onArray);
    void Take(Korvel::KArray& onArray);
    void RemoveTaken(Korvel::KArray& onArray);
    bool IsAbandoned() {
        const std::lock_guard lock(mutex);
        return abandoned;
    }
};

void ArrayCommit::Request::Perform(Korvel::KArray& onArray) {
    if (!IsAbandoned()) {  // it may have waited for its turn behind another request that hung
        Take(onArray);
    }
    const std::lock_guard lock(mutex);
    if (abandoned && ended) {
        log("array " + array + " has answered too late: its snapshots are removed");
        RemoveTaken(onArray);
    }
}

void ArrayCommit::Request::Take(Korvel::KArray& onArray) {
    const auto pointersTo = [](std::list<std::string>& names) {
        std::list<std::string*> pointers;
        std::transform(names.begin(), names.end(), std::back_inserter(pointers),
                       [](std::string& name) { return &name; });
        return pointers;
    };
    std::list<std::string> names;
    std::string text;
    try {
        RequireDone(Korvel::KVolume::CreateSnapshotSet(&onArray, pointersTo(volumes), pointersTo(groups), &names),
                    "the snapshot set");
        if (names.size() != volumes.size()) {
            text =
                "the array reports " + std::to_string(names.size()) + " snapshots of " + std::to_string(volumes.size());
        }
    } catch (const std::exception& error) {
        text = ReasonOf(error);
    }
    const std::lock_guard lock(mutex);
    taken = std::move(names);
    failure = text;
    ended = true;
}

/// Removes what the array reports to have taken. A reply that was lost names nothing: then only the log can tell.
void ArrayCommit::Request::RemoveTaken(Korvel::KArray& onArray) {
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
            log("array " + array + " keeps snapshot " + snapshot + ": " + ReasonOf(error));
        }
    }
}

ArrayCommit::ArrayCommit(ArrayWorker& onArray, Log writeLog) : worker(onArray), request(std::make_shared<Request>()) {
    request->array = worker.Address();
    request->log = std::move(writeLog);
}

ArrayCommit::~ArrayCommit() {
    if (!answer.valid()) {
        return;
    }
    try {
        GiveUp();
    } catch (const std::exception&) {
        // There was no memory for a task, so there is none for a word in the log.
    }
}

void ArrayCommit::Add(SnapshotItem& item) {
    items.push_back(&item);
    request->anySource = item.sourceId;
    request->volumes.push_back(item.volume);
    request->groups.push_back(item.group);
}

void ArrayCommit::Begin() {
    answer = worker.Post([request = request](Korvel::KArray& array) { request->Perform(array); });
}

void ArrayCommit::Await(std::chrono::steady_clock::time_point deadline) {
    worker.Await(answer, deadline);
}

std::string ArrayCommit::Finish() {
    const std::lock_guard lock(request->mutex);
    if (!request->ended) {
        return "; array " + request->array + " does not answer in time";
    }
    if (!request->failure.empty()) {
        return "; array " + request->array + ": " + request->failure;
    }
    auto snapshot = request->taken.begin();  // the array names them in the order of the volumes
    for (SnapshotItem* item : items) {
        item->snapshot.swap(*snapshot++);
    }
    answer = {};
    return "";
}

void ArrayCommit::GiveUp() {
    const std::lock_guard lock(request->mutex);
    if (request->ended) {
        worker.Post([request = request](Korvel::KArray& array) { request->RemoveTaken(array); });
    } else {
        request->abandoned = true;
    }
}

}  // namespace VssExample
