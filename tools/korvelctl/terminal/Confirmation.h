#pragma once

#include <string>
#include <vector>

namespace Korvel::Ctl {

/// Refuses a command that destroys something when nobody can be asked: without --yes it needs a terminal. Call it
/// before the first request, so that a script learns of its mistake at once.
/// @throws Failure with ExitWrongUsage
void RequireConfirmable(bool yes);

/// Asks the person at the terminal to type "yes".
/// @param yes true when --yes was given: nothing is asked
/// @param consequence what will happen, a whole sentence or one that the items complete
/// @param items what it will happen to, a line each
/// @throws Failure with ExitDeclined when the answer is anything else, with ExitInterrupted when there is none
void Confirm(bool yes, const std::string& consequence, const std::vector<std::string>& items = {});

}  // namespace Korvel::Ctl
