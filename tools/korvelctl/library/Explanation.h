#pragma once

#include <exception>
#include <string>

#include "library/Purpose.h"
#include "outcome/Failure.h"

namespace Korvel::Ctl {

/// @return what went wrong in an operator's words: the array's own message, or what the library's text means
std::string Explain(const std::exception& error);

/// Makes a failure of what the library threw. A change of which no answer tells whether it was made is said to be that.
/// @param address the array's address
Failure FailureOf(const std::string& address, const Purpose& purpose, const std::exception& error);

/// Makes a failure of an array that was not waited for any longer.
/// @param asked whether it was asked at all
Failure Unanswered(const std::string& address, const Purpose& purpose, bool asked);

/// Accepts success and turns every other status that an operation returned into a Failure.
/// @throws Failure
void RequireSuccess(int status, const std::string& address, const Purpose& purpose);

}  // namespace Korvel::Ctl
