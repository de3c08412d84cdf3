#pragma once

#include <KorvelAccessLibrary.h>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>

namespace VssExample {

/// One array, and the one thread that talks to it.
///
/// The library has no timeouts and takes no locks. So each array gets a thread with an access layer of its own, and who
/// wants something of the array hands it a task and waits only as long as it likes. An array that hangs holds up its
/// own thread and nobody else.
class ArrayWorker {
public:
    using Task = std::function<void(Korvel::KArray&)>;

    /// Begins the thread; it reads the configuration before its first task.
    /// @param arrayAddress the array's address, as it stands in the registry
    explicit ArrayWorker(const std::string& arrayAddress);

    /// Gives up on the thread if it has not ended; see Stop.
    ~ArrayWorker();
    ArrayWorker(const ArrayWorker&) = delete;
    ArrayWorker& operator=(const ArrayWorker&) = delete;

    /// Hands the thread a task.
    /// @return becomes ready when the task has been done; throws what the task threw
    std::future<void> Post(Task task);

    /// Waits for a task. Once one was not done in time the array counts as hanging, and nobody waits for it any more
    /// until its thread has done a task again.
    /// @return whether the task is done; if not, it may be done later
    bool Await(const std::future<void>& done, std::chrono::steady_clock::time_point deadline);

    /// Hands the thread a task and waits for it.
    /// @throws ProviderError when it has not been done in time (it may be done later), or what the task threw
    void Run(Task task, std::chrono::milliseconds patience);

    /// Lets the thread end after the tasks it has, and waits for that.
    /// @return whether it ended in time; if not it goes on by itself, and the process must not unload this code nor end
    ///         the library's use
    bool Stop(std::chrono::milliseconds patience);

    const std::string& Address() const { return address; }

private:
    struct Queue;

    std::string address;
    std::shared_ptr<Queue> queue;  // the thread's too, which may outlive this object
    std::thread thread;
};

}  // namespace VssExample
