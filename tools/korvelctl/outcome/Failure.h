#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "outcome/ExitStatus.h"

namespace Korvel::Ctl {

/// Ends a command: the text is for the person at the terminal, the status for the script.
class Failure : public std::runtime_error {
public:
    /// @param exitStatus the exit status the program is to end with
    /// @param text what went wrong, without the program's name
    /// @param onArray the address of the array it went wrong on; empty when it was none
    Failure(ExitStatus exitStatus, const std::string& text, std::string onArray = {})
        : std::runtime_error(text),
          status(exitStatus),
          array(std::make_shared<const std::string>(std::move(onArray))) {}

    /// @return the exit status the program is to end with
    ExitStatus Status() const { return status; }

    /// @return the address of the array it went wrong on; empty when it was none
    const std::string& Array() const { return *array; }

private:
    ExitStatus status;
    std::shared_ptr<const std::string> array;  // a copy of what is thrown must not throw
};

}  // namespace Korvel::Ctl
