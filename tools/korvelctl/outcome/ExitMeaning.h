#pragma once

#include "outcome/ExitStatus.h"

namespace Korvel::Ctl {

/// What an exit status means.
struct ExitMeaning {
    ExitStatus status;
    const char* meaning;
    const char* problemKind;  ///< what scripts read of a problem that ends the program so
};

/// In the order in which help and pages show them.
inline constexpr ExitMeaning ExitMeanings[] = {
    {ExitDone, "done", "notice"},
    {ExitFailed, "failed: a message says why", "failed"},
    {ExitNotFound, "not found: no array has what was asked for", "not-found"},
    {ExitPartial, "done in part: something is shown, and something failed", "partial"},
    {ExitDeclined, "declined at the prompt; nothing was changed", "declined"},
    {ExitWrongUsage, "wrong usage, or no telling what is meant; nothing was changed, save what a notice tells",
     "usage"},
    {ExitOutcomeUnknown, "outcome unknown: a change was asked for and not answered", "outcome-unknown"},
    {ExitInterrupted, "interrupted with no change under way", "interrupted"},
};

}  // namespace Korvel::Ctl
