#pragma once

#include <KorvelAccessLibrary.h>

#include <exception>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "AccessKey.h"
#include "KFailure.h"

namespace Korvel::Ctl {

/// Which arrays a command is to ask: all that are configured, some of them, or one that is not in the registry.
struct Target {
    std::vector<std::string> addresses;
    KeySource key;
};

/// The library's process-wide state, from the first request to the last.
class KLibrary {
public:
    KLibrary() { KAccessLayer::GlobalInit(); }
    ~KLibrary() { KAccessLayer::GlobalCleanup(); }
    KLibrary(const KLibrary&) = delete;
    KLibrary& operator=(const KLibrary&) = delete;
};

/// The library in use by one command: set up, with the arrays the command asks, and taken down again.
class KSession {
public:
    /// Finds the arrays.
    /// @throws KFailure when an array that was named is not configured, or the configuration would end the process
    explicit KSession(const Target& target);

    /// @return the access layer, for the operations that need no array
    KAccessLayer& Layer() { return layer; }

    /// @return the arrays in the registry's order; owned by this session
    const std::vector<KArray*>& Arrays() const { return arrays; }

    /// @return why not every configured array could be read; empty when all were, or the ones that count were named
    const std::string& Problem() const { return problem; }

    /// @throws KFailure when there is no array to ask
    void RequireArrays() const;

private:
    void UseUnconfigured(const Target& target);
    void UseConfigured(const Target& target);
    void KeepOnly(const std::vector<std::string>& addresses);

    KLibrary library;  // first, so that it outlives the layer and the arrays
    KAccessLayer layer;
    std::unique_ptr<KArray> unconfigured;
    std::vector<KArray*> arrays;
    std::string problem;
};

/// @return the array's address
std::string AddressOf(KArray& array);

/// @return what went wrong: the array's own message, or the library's
std::string Explain(const std::exception& error);

/// Carries out one operation on an array and turns everything but success into a KFailure.
/// @param action what was asked for, to follow "the request to"
/// @param operation returns the library's status
template <typename Operation>
void Perform(KArray& array, const std::string& action, Operation&& operation) {
    int status = KStatusFailure;
    try {
        status = std::forward<Operation>(operation)();
    } catch (const KFailure&) {
        throw;
    } catch (const std::exception& error) {
        throw KFailure(ExitFailed, "array " + AddressOf(array) + ": " + Explain(error));
    }
    if (status == KStatusFailure) {
        throw KFailure(ExitFailed, "array " + AddressOf(array) +
                                       " replied, but the reply holds no answer to the request to " + action +
                                       ": whether it was carried out is not known");
    }
    if (status != KStatusSuccess) {
        throw KFailure(ExitNotFound, "array " + AddressOf(array) +
                                         " does not find what it was asked for in the request to " + action);
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
