#pragma once

#include "outcome/ExitStatus.h"

namespace Korvel::Ctl {

/// What an exit status means.
struct ExitMeaning {
    ExitStatus status;
    const char* meaning;
};

/// In the order in which help and pages show them.
inline constexpr ExitMeaning ExitMeanings[] = {
    {ExitDone, "done"},
    {ExitFailed, "failed: a message says why"},
    {ExitNotFound, "not found: no array has what was asked for"},
    {ExitPartial, "done in part: something is shown, and something failed"},
    {ExitDeclined, "declined at the prompt; nothing was changed"},
    {ExitWrongUsage, "wrong usage, or no telling what is meant; nothing was changed"},
    {ExitOutcomeUnknown, "outcome unknown: a change was asked for and not answered"},
    {ExitInterrupted, "interrupted with no change under way"},
};

}  // namespace Korvel::Ctl
