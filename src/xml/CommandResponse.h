#pragma once

#include <list>
#include <string>

namespace Korvel {

/// What the array answered to a command. Texts that the reply does not hold stay as they were.
struct CommandResponse {
    std::string status;                               ///< "0" and nothing else is success
    std::string statusMsg;                            ///< the array's own message
    std::string name;                                 ///< the name that the command's action asks for
    std::list<std::string>* snapshotNames = nullptr;  ///< the caller's list, not owned; required by action 0
};

}  // namespace Korvel
