#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "crew/Progress.h"

namespace Korvel::Ctl {

/// Work on several arrays at once, at most 16, each on a thread of its own. One that hangs holds up nobody: who waits
/// for it waits as long as there is patience, and leaves it behind.
class Crew {
public:
    /// @param array the address of the array, for what is shown while it is waited for
    /// @param work what is to be done; must not throw, and owns or shares all it uses, because it may be left behind
    struct Task {
        std::string array;
        std::function<void(Progress&)> work;
    };

    enum class State { Waiting, Running, Done };

    /// Starts the work in the order of the tasks.
    explicit Crew(std::vector<Task> tasks);

    /// Starts nothing more. Waits for what is done anyway; what still runs is left behind, and the program then has to
    /// end without taking anything down that it may use.
    ~Crew();
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;

    /// Waits for a task, and shows on a terminal what is waited for when that takes long.
    /// @param hasNews asked whenever a task says that there is news: whether to come back early
    /// @return the task's state: Done, or another when there is news or no patience left
    State Wait(std::size_t task, const std::function<bool()>& hasNews);

    /// @param show called again and again while a wait takes long, so that what is there already can be shown; not on
    ///        top of a line on the terminal
    static void OnLongWait(std::function<void()> show);

    /// @return whether work was left behind
    static bool LeftWorkBehind();

private:
    struct Shared;
    void ShowWaiting() const;

    std::shared_ptr<Shared> shared;
    std::vector<std::thread> threads;
};

}  // namespace Korvel::Ctl
