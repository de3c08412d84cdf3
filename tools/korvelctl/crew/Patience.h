#pragma once

#include <chrono>
#include <string>

namespace Korvel::Ctl {

/// How long the program waits for arrays: until the time limit, if there is one, or until it is told to end (Ctrl-C, a
/// lost terminal, a request from the system). There is one for the process, as there is one set of signals.
class Patience {
public:
    using Clock = std::chrono::steady_clock;

    /// Starts the time and catches what would end the process. A second Ctrl-C ends it at once.
    /// @param seconds the time limit; 0 or less for none
    static void Begin(double seconds);

    /// @return whether nothing is to be waited for any more
    static bool IsOver();

    /// @return whether the program was told to end
    static bool WasInterrupted();

    /// @return why an array was not waited for, to follow "array A has not answered"
    static std::string Reason();

    /// Keeps the time limit from running while a person thinks.
    class Pause {
    public:
        Pause() = default;
        ~Pause() { deadline += Clock::now() - begin; }
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

    private:
        Clock::time_point begin = Clock::now();
    };

private:
    static double limit;
    static Clock::time_point deadline;
};

}  // namespace Korvel::Ctl
