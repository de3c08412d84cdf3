#pragma once

#include <functional>
#include <string>

#include "outcome/Report.h"

namespace Korvel::Ctl {

/// What the command line asks for: the options every command has, and the command.
struct CommandLine {
    bool asJson = false;
    std::string logFile;
    std::string logLevel;
    double timeout = 0;                   ///< in seconds; 0 for none
    std::string document;                 ///< what is written as it stands instead, save in JSON; mostly empty
    std::function<void(Report&)> action;  ///< carries the command out and fills the report
};

}  // namespace Korvel::Ctl
