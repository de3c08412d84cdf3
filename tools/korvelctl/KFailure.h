#pragma once

#include <stdexcept>
#include <string>

namespace Korvel::Ctl {

/// What korvelctl ends with.
enum ExitStatus : int {
    ExitDone = 0,
    ExitFailed = 1,
    ExitNotFound = 2,
    ExitWrongUsage = 64,
};

/// Ends a command: the text is for the person at the terminal, the status for the script.
class KFailure : public std::runtime_error {
public:
    KFailure(ExitStatus exitStatus, const std::string& text) : std::runtime_error(text), status(exitStatus) {}

    /// @return the exit status the program is to end with
    ExitStatus Status() const { return status; }

private:
    ExitStatus status;
};

}  // namespace Korvel::Ctl
