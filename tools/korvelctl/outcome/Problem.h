#pragma once

#include <string>

#include "outcome/ExitStatus.h"

namespace Korvel::Ctl {

/// Something that went wrong, beside what is shown.
struct Problem {
    std::string text;                ///< what went wrong, without the program's name
    ExitStatus status = ExitFailed;  ///< how the program ends if nothing else goes wrong; ExitDone for a mere notice
    std::string array = {};          ///< the address of the array it went wrong on; empty when it was none
};

}  // namespace Korvel::Ctl
