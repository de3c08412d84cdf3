#pragma once

namespace Korvel::Sim {

/// What the simulator asks of the system that it runs on. There is one at most.
class Process {
public:
    /// From now on the signals and console events that end a program wait for WaitForEnd. Has to be made before any
    /// other thread.
    Process();

    /// Lets the system go on with an end that it asked for.
    ~Process();  // NOLINT(performance-trivially-destructible): it is not on Windows

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// Lets WaitForEnd return, as Ctrl-C does. For any thread.
    static void End();

    /// Waits until the program is to end.
    void WaitForEnd();

    /// New files are their owner's alone, where the system has that.
    static void KeepFilesPrivate();
};

}  // namespace Korvel::Sim
