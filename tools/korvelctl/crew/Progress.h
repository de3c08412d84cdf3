#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <utility>

namespace Korvel::Ctl {

/// How far one task has come. The task tells, whoever waits reads.
class Progress {
public:
    /// @param onNews called after every change of what the task has to say; from the task's thread
    explicit Progress(std::function<void()> onNews) : tellNews(std::move(onNews)) {}

    /// Says how far the task is.
    /// @param things what is counted, to follow the numbers: "groups asked"; a literal
    void Set(std::size_t done, std::size_t total, const char* things);

    /// Wakes whoever waits for the task's results.
    void TellNews() const { tellNews(); }

    /// @return a clause like "41 of 1,000 groups asked", empty when the task has not told
    std::string Text() const;

private:
    std::function<void()> tellNews;
    mutable std::mutex access;
    std::size_t doneCount = 0;
    std::size_t totalCount = 0;
    const char* counted = "";
};

}  // namespace Korvel::Ctl
