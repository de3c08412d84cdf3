#pragma once

#include <string>

#include "outcome/Report.h"

namespace Korvel::Ctl {

/// Tells the logging library where records go and how many there are. It reads its settings from the environment, when
/// the first record is written.
/// @param file the file's path; empty to leave it to the environment
/// @param level the level; empty to leave it to the environment
/// @param report told when others can read the file: from level 2 on it holds access keys
/// @throws Failure when the file cannot be written; the logging library would fall back to the terminal
void SetLogging(const std::string& file, const std::string& level, Report& report);

}  // namespace Korvel::Ctl
