#pragma once

#include <exception>
#include <stdexcept>

#include "foundation/KLog.h"
#include "foundation/KStatus.h"

namespace Korvel {

/// Refuses a call whose argument is empty or null.
/// @param text the exception's text, which names the operation
/// @throws std::invalid_argument when the argument is not valid
inline void RequireArgument(bool valid, const char* text) {
    if (!valid) {
        throw std::invalid_argument(text);
    }
}

/// Runs the protected steps of an operation; a standard exception that leaves them is logged and goes on to the caller.
/// What the operation holds are locals of the steps, so nothing is held any more when the log shows the failure.
/// @return what the steps return
template <typename Steps>
int LogAndRethrow(const Steps& steps) {
    try {
        return steps();
    } catch (const std::exception& error) {
        LogError("%s", error.what());
        throw;
    }
}

/// Runs the protected steps of an operation that reports an exception as a status.
/// @return 0, or 1 after a standard exception, which is logged
template <typename Steps>
int LogAndConvert(const Steps& steps) {
    try {
        steps();
        return KStatusSuccess;
    } catch (const std::exception& error) {
        LogError("%s", error.what());
        return KStatusFailure;
    }
}

}  // namespace Korvel
