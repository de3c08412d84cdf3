#pragma once

#include <httplib.h>

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

namespace Korvel::Sim {

/// Threads for connections, as many as there are at one time: a client that is silent keeps nobody else waiting.
class GrowingPool : public httplib::TaskQueue {
public:
    void enqueue(std::function<void()> fn) override;
    void shutdown() override;

private:
    void Work();

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> tasks;
    std::list<std::thread> threads;
    std::size_t idle = 0;
    bool ending = false;
};

}  // namespace Korvel::Sim
