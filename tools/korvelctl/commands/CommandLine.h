#pragma once

#include <functional>
#include <string>

#include "outcome/Format.h"
#include "outcome/Report.h"

namespace Korvel::Ctl {

/// What the command line asks for: the options every command has, and the command.
struct CommandLine {
    bool asJson = false;
    std::string format = TextFormat;
    std::string logFile;
    std::string logLevel;
    double timeout = 0;                   ///< in seconds; 0 for none
    std::string document;                 ///< in text it is written instead, as it stands; mostly empty
    std::function<void(Report&)> action;  ///< carries the command out and fills the report
};

}  // namespace Korvel::Ctl
