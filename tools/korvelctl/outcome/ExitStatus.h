#pragma once

namespace Korvel::Ctl {

/// What korvelctl ends with. Scripts rely on the numbers.
enum ExitStatus : int {
    ExitDone = 0,
    ExitFailed = 1,
    ExitNotFound = 2,
    ExitPartial = 3,          ///< something was done or found, and something failed
    ExitDeclined = 4,         ///< the person at the terminal did not agree; nothing was changed
    ExitWrongUsage = 64,      ///< nothing was changed
    ExitOutcomeUnknown = 75,  ///< a change was asked for, and no answer tells whether it was made
    ExitInterrupted = 130,    ///< ended by Ctrl-C or its like, with no change under way
};

}  // namespace Korvel::Ctl
