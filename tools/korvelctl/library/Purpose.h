#pragma once

#include <string>

namespace Korvel::Ctl {

/// Stands for the command that shows whether a change was made when there is none: no listing has it.
inline constexpr const char* NotListed = "";

/// What arrays are asked for.
struct Purpose {
    std::string action;  ///< to follow "the request to"

    /// For a change, the command that shows whether it was made, or NotListed; null for a look.
    const char* lookHere = nullptr;

    /// What to do when the library's name for what is to be made is taken: it makes names of the clock's second.
    const char* whenTaken = "";

    /// @return whether an array is to change something
    bool IsChange() const { return lookHere != nullptr; }
};

}  // namespace Korvel::Ctl
