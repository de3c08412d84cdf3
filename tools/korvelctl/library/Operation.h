#pragma once

#include <KorvelAccessLibrary.h>

#include <exception>
#include <string>
#include <utility>

#include "outcome/Failure.h"

namespace Korvel::Ctl {

/// @return the array's address
std::string AddressOf(KArray& array);

/// @return what went wrong: the array's own message, or the library's
std::string Explain(const std::exception& error);

/// Carries out one operation on an array and turns everything but success into a Failure.
/// @param action what was asked for, to follow "the request to"
/// @param operation returns the library's status
template <typename Operation>
void Perform(KArray& array, const std::string& action, Operation&& operation) {
    int status = KStatusFailure;
    try {
        status = std::forward<Operation>(operation)();
    } catch (const Failure&) {
        throw;
    } catch (const std::exception& error) {
        throw Failure(ExitFailed, "array " + AddressOf(array) + ": " + Explain(error), AddressOf(array));
    }
    if (status == KStatusFailure) {
        throw Failure(ExitFailed,
                      "array " + AddressOf(array) + " replied, but the reply holds no answer to the request to " +
                          action + ": whether it was carried out is not known",
                      AddressOf(array));
    }
    if (status != KStatusSuccess) {
        throw Failure(ExitNotFound,
                      "array " + AddressOf(array) + " does not find what it was asked for in the request to " + action,
                      AddressOf(array));
    }
}

/// Looks something up the way the library means it: memory first, and the array only when memory does not know. The
/// library never makes the second call by itself.
/// @param plain the lookup in memory
/// @param fromArray its twin that asks the array
/// @param result as the lookups take it; a pointer must be null
/// @return the library's status
template <typename Result>
int LookUp(KArray& array, int (KArray::*plain)(const std::string&, Result&),
           int (KArray::*fromArray)(const std::string&, Result&), const std::string& key, Result& result) {
    const int status = (array.*plain)(key, result);
    return status == KStatusNotFound ? (array.*fromArray)(key, result) : status;
}

}  // namespace Korvel::Ctl
