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

/// Runs the protected steps of an operation. A standard exception that leaves them first has the operation's holdings
/// released, then is logged, and goes on to the caller: in this order, so that nothing is held when the log shows it.
/// @return what the steps return
template <typename Steps, typename Release>
int LogAndRethrow(Steps steps, Release release) {
    try {
        return steps();
    } catch (const std::exception& error) {
        release();
        LogError("%s", error.what());
        throw;
    }
}

/// Runs the protected steps of an operation that reports an exception as a status.
/// @return 0, or 1 after a standard exception, which is logged
template <typename Steps>
int LogAndConvert(Steps steps) {
    try {
        steps();
        return KStatusSuccess;
    } catch (const std::exception& error) {
        LogError("%s", error.what());
        return KStatusFailure;
    }
}

}  // namespace Korvel
