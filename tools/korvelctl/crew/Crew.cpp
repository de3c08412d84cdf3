#include "crew/Crew.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <utility>

#include "crew/Patience.h"
#include "terminal/StatusLine.h"

namespace Korvel::Ctl {
namespace {

using std::chrono::milliseconds;

constexpr std::size_t MostAtOnce = 16;
constexpr milliseconds Tick{100};        // a signal handler cannot wake whoever waits
constexpr milliseconds SilentFor{2000};  // what takes less is not worth a line on the terminal

std::atomic<bool> leftBehind{false};
std::function<void()> showWhatIsThere = [] {};

struct Entry {
    explicit Entry(std::function<void()> onNews) : progress(std::move(onNews)) {}

    Crew::Task task;
    Crew::State state = Crew::State::Waiting;
    Progress progress;
};

}  // namespace

struct Crew::Shared {
    std::mutex access;  // guards states, next and stopped
    std::condition_variable news;
    std::deque<Entry> entries;
    std::size_t next = 0;
    bool stopped = false;
    const Patience::Clock::time_point begin = Patience::Clock::now();

    /// Takes one task after the other until there is none left.
    void Run() {
        std::unique_lock lock(access);
        while (!stopped && next < entries.size()) {
            Entry& entry = entries[next++];
            entry.state = State::Running;
            lock.unlock();
            entry.task.work(entry.progress);
            lock.lock();
            entry.state = State::Done;
            news.notify_all();
        }
    }
};

Crew::Crew(std::vector<Task> tasks) : shared(std::make_shared<Shared>()) {
    Shared* owner = shared.get();  // outlives its entries
    for (Task& task : tasks) {
        shared->entries
            .emplace_back([owner] {
                const std::lock_guard lock(owner->access);
                owner->news.notify_all();
            })
            .task = std::move(task);
    }
    threads.reserve(MostAtOnce);
    // What comes after the end of patience is not begun, a change above all.
    while (threads.size() < std::min(tasks.size(), MostAtOnce) && !Patience::IsOver()) {
        try {
            threads.emplace_back([kept = shared] { kept->Run(); });
        } catch (const std::system_error&) {  // the system has no more of them
            if (threads.empty()) {
                throw;
            }
            return;
        }
    }
}

Crew::~Crew() {
    std::unique_lock lock(shared->access);
    shared->stopped = true;
    const bool running = std::any_of(shared->entries.begin(), shared->entries.end(),
                                     [](const Entry& entry) { return entry.state == State::Running; });
    lock.unlock();
    leftBehind = leftBehind || running;
    for (std::thread& thread : threads) {
        if (running) {
            thread.detach();
        } else {
            thread.join();
        }
    }
}

Crew::State Crew::Wait(std::size_t task, const std::function<bool()>& hasNews) {
    StatusLine::Guard line;
    std::unique_lock lock(shared->access);
    const Entry& entry = shared->entries[task];
    while (entry.state != State::Done && !hasNews() && !Patience::IsOver()) {
        shared->news.wait_for(lock, Tick);
        ShowWaiting();
    }
    return entry.state;
}

/// Called with the lock held.
void Crew::ShowWaiting() const {
    if (Patience::Clock::now() - shared->begin < SilentFor) {
        return;
    }
    showWhatIsThere();
    if (!StatusLine::IsUseful()) {
        return;
    }
    std::string text;
    std::size_t others = 0;
    for (const Entry& entry : shared->entries) {
        if (entry.state == State::Done) {
            continue;
        }
        if (!text.empty()) {
            ++others;
            continue;
        }
        const std::string progress = entry.progress.Text();
        text = "waiting for array " + entry.task.array + (progress.empty() ? "" : ", " + progress);
    }
    StatusLine::Show(text + (others == 0 ? "" : "; " + std::to_string(others) + " more to answer"));
}

void Crew::OnLongWait(std::function<void()> show) {
    showWhatIsThere = std::move(show);
}

bool Crew::LeftWorkBehind() {
    return leftBehind;
}

}  // namespace Korvel::Ctl
