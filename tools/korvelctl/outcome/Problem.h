#pragma once

#include <string>

#include "outcome/ExitStatus.h"

namespace Korvel::Ctl {

/// Something that went wrong, beside what is shown.
struct Problem {
    std::string text;                ///< what went wrong, without the program's name
    ExitStatus status = ExitFailed;  ///< what the program ends with if nothing else goes wrong
    std::string array = {};          ///< the address of the array it went wrong on; empty when it was none
};

}  // namespace Korvel::Ctl
