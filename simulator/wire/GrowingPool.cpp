#include "wire/GrowingPool.h"

#include <utility>

namespace Korvel::Sim {

void GrowingPool::enqueue(std::function<void()> fn) {
    const std::lock_guard lock(mutex);
    tasks.push_back(std::move(fn));
    if (tasks.size() > idle) {
        threads.emplace_back([this] { Work(); });
    }
    changed.notify_one();
}

void GrowingPool::shutdown() {
    {
        const std::lock_guard lock(mutex);
        ending = true;
        changed.notify_all();
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

void GrowingPool::Work() {
    std::unique_lock lock(mutex);
    while (true) {
        ++idle;
        changed.wait(lock, [this] { return ending || !tasks.empty(); });
        --idle;
        if (tasks.empty()) {
            return;
        }
        const std::function<void()> task = std::move(tasks.front());
        tasks.pop_front();
        lock.unlock();
        task();
        lock.lock();
    }
}

}  // namespace Korvel::Sim
