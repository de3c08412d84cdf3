#pragma once

#include <string>

namespace Korvel::Ctl {

/// Refuses a command that destroys something when nobody can be asked: without --yes it needs a terminal. Call it
/// before the first request, so that a script learns of its mistake at once.
/// @throws Failure with ExitWrongUsage
void RequireConfirmable(bool yes);

/// Asks the person at the terminal to type "yes".
/// @param yes true when --yes was given: nothing is asked
/// @param consequence what will happen, a whole sentence
/// @throws Failure with ExitFailed when the answer is anything else
void Confirm(bool yes, const std::string& consequence);

}  // namespace Korvel::Ctl
