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

/// The snapshots of one set on one array: one request, while writers hold still. An array that answers after everybody
/// has given up on it removes by itself what it has made.
class ArrayCommit {
public:
    /// @param onArray the array's worker, which outlives this object
    /// @param writeLog where snapshots stand that the array keeps
    ArrayCommit(ArrayWorker& onArray, Log writeLog);

    /// Takes in a volume of the array. The item has to outlive this object.
    void Add(SnapshotItem& item);

    /// Hands the request to the array's worker.
    void Begin();

    /// Waits for its end, no longer than to the deadline.
    void Await(std::chrono::steady_clock::time_point deadline);

    /// Gives each item its snapshot; or gives up on them: those that are there, or come late, are removed.
    /// @return why there are none, as a clause that begins with "; "; empty when there are
    std::string Finish();

private:
    struct Request;

    ArrayWorker& worker;
    std::vector<SnapshotItem*> items;
    std::shared_ptr<Request> request;  // the worker's task shares it, and may end last
    std::future<void> answer;
};

}  // namespace VssExample
