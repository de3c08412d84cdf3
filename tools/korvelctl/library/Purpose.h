#pragma once

#include <string>

namespace Korvel::Ctl {

/// What arrays are asked for.
struct Purpose {
    std::string action;              ///< to follow "the request to"
    const char* lookHere = nullptr;  ///< for a change, the command that shows whether it was made; null for a look

    /// @return whether an array is to change something
    bool IsChange() const { return lookHere != nullptr; }
};

}  // namespace Korvel::Ctl
