#pragma once

#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include "core/ArrayWorker.h"
#include "core/Log.h"
#include "core/SnapshotSet.h"

namespace VssExample {

/// The snapshots of one set on one array: one request, while writers hold still. What was begun and has not given its
/// items their snapshots is given up at the end of this object: snapshots that are there, or come late, are removed.
class ArrayCommit {
public:
    /// @param onArray the array's worker, which outlives this object
    /// @param writeLog where snapshots stand that the array keeps
    ArrayCommit(ArrayWorker& onArray, Log writeLog);

    ~ArrayCommit();
    ArrayCommit(const ArrayCommit&) = delete;
    ArrayCommit& operator=(const ArrayCommit&) = delete;

    /// Takes in a volume of the array. The item has to outlive this object.
    void Add(SnapshotItem& item);

    /// Hands the request to the array's worker.
    void Begin();

    /// Waits for its end, no longer than to the deadline.
    void Await(std::chrono::steady_clock::time_point deadline);

    /// Gives each item its snapshot.
    /// @return why there are none, as a clause that begins with "; "; empty when there are
    std::string Finish();

private:
    struct Request;

    void GiveUp();

    ArrayWorker& worker;
    std::vector<SnapshotItem*> items;
    std::shared_ptr<Request> request;  // the worker's task shares it, and may end last
    std::future<void> answer;          // valid from Begin until the items have their snapshots
};

}  // namespace VssExample
