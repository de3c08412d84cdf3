#pragma once

#include <KorvelAccessLibrary.h>

#include <memory>
#include <string>
#include <vector>

#include "library/Library.h"
#include "library/Target.h"

namespace Korvel::Ctl {

/// The library in use by one command: set up, with the arrays the command asks, and taken down again.
class Session {
public:
    /// Finds the arrays.
    /// @throws Failure when an array that was named is not configured, or the configuration would end the process
    explicit Session(const Target& target);

    /// @return the arrays in the registry's order; owned by this session
    const std::vector<KArray*>& Arrays() const { return arrays; }

    /// @return why not every configured array could be read; empty when all were, or the ones that count were named
    const std::string& Problem() const { return problem; }

    /// @throws Failure when there is no array to ask
    void RequireArrays() const;

private:
    void UseUnconfigured(const Target& target);
    void UseConfigured(const Target& target);
    void KeepOnly(const std::vector<std::string>& addresses);

    Library library;  // first, so that it outlives the layer and the arrays
    KAccessLayer layer;
    std::unique_ptr<KArray> unconfigured;
    std::vector<KArray*> arrays;
    std::string problem;
};

}  // namespace Korvel::Ctl
