#include "core/ArrayWorker.h"

#include <condition_variable>
#include <deque>
#include <list>
#include <mutex>
#include <utility>

#include "core/ProviderError.h"

namespace VssExample {

struct ArrayWorker::Queue {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::packaged_task<void(Korvel::KArray&)>> tasks;
    bool stopping = false;
    bool hangs = false;
    std::promise<void> ended;
    std::future<void> end = ended.get_future();

    /// @return the next task; one that holds nothing when there will be none
    std::packaged_task<void(Korvel::KArray&)> Next() {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return stopping || !tasks.empty(); });
        std::packaged_task<void(Korvel::KArray&)> task;
        if (!tasks.empty()) {
            task = std::move(tasks.front());
            tasks.pop_front();
        }
        return task;
    }

    void Answered() {
        const std::lock_guard lock(mutex);
        hangs = false;
    }
};

namespace {

/// The layer's array of this address: an access key is read from the registry by a discovery alone.
/// @return null when there is none, or none can be read: then every task of the thread fails
Korvel::KArray* FindArray(Korvel::KAccessLayer& layer, const std::string& address) try {
    layer.DiscoverArrays();  // one array without a key ends it with 1; those before that one are there all the same
    std::list<Korvel::KArray*> arrays;
    layer.GetArrays(arrays);
    for (Korvel::KArray* array : arrays) {
        std::string* arrayAddress = nullptr;
        array->GetIPAddress(arrayAddress);
        if (*arrayAddress == address) {
            return array;
        }
    }
    return nullptr;
} catch (const std::exception&) {
    return nullptr;
}

}  // namespace

ArrayWorker::ArrayWorker(const std::string& arrayAddress) : address(arrayAddress), queue(std::make_shared<Queue>()) {
    thread = std::thread([queue = queue, address = arrayAddress] {
        {
            Korvel::KAccessLayer layer;
            Korvel::KArray* array = FindArray(layer, address);
            for (auto task = queue->Next(); task.valid(); task = queue->Next()) {
                if (array == nullptr) {
                    continue;  // who waits for the task is told by its promise, which is broken now
                }
                task(*array);
                queue->Answered();
            }
        }
        queue->ended.set_value();
    });
}

ArrayWorker::~ArrayWorker() {
    Stop(std::chrono::milliseconds(0));
}

std::future<void> ArrayWorker::Post(Task task) {
    std::packaged_task<void(Korvel::KArray&)> posted(std::move(task));
    std::future<void> done = posted.get_future();
    const std::lock_guard lock(queue->mutex);
    queue->tasks.push_back(std::move(posted));
    queue->changed.notify_one();
    return done;
}

bool ArrayWorker::Await(const std::future<void>& done, std::chrono::steady_clock::time_point deadline) {
    std::unique_lock lock(queue->mutex);
    if (!queue->hangs) {
        lock.unlock();
        done.wait_until(deadline);
        lock.lock();
    }
    const bool isDone = done.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    queue->hangs = queue->hangs || !isDone;
    return isDone;
}

void ArrayWorker::Run(Task task, std::chrono::milliseconds patience) {
    std::future<void> done = Post(std::move(task));
    if (!Await(done, std::chrono::steady_clock::now() + patience)) {
        throw ProviderError(ProviderError::Kind::Veto, "array " + address + " does not answer");
    }
    done.get();
}

bool ArrayWorker::Stop(std::chrono::milliseconds patience) {
    if (!thread.joinable()) {
        return true;
    }
    {
        const std::lock_guard lock(queue->mutex);
        queue->stopping = true;
        queue->changed.notify_one();
    }
    const bool ended = queue->end.wait_for(patience) == std::future_status::ready;
    ended ? thread.join() : thread.detach();
    return ended;
}

}  // namespace VssExample
