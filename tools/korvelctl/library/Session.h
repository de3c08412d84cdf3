#pragma once

#include <KorvelAccessLibrary.h>

#include <string>
#include <vector>

#include "configuration/Configuration.h"
#include "library/Ask.h"
#include "library/Library.h"
#include "library/Target.h"
#include "outcome/Problem.h"
#include "outcome/Report.h"

namespace Korvel::Ctl {

/// The library in use by one command: set up, with the arrays the command asks, and taken down again.
class Session {
public:
    /// Finds the arrays.
    /// @throws Failure when an array that was named is not configured, or the configuration would end the process
    explicit Session(const Target& target);

    /// @return the arrays in the registry's order
    const std::vector<SharedArray>& Arrays() const { return arrays; }

    /// @return why not every configured array could be read; empty when all were, or the ones that count were named
    const std::string& Problem() const { return problem; }

    /// Tells the report of that.
    void ReportProblem(Report& report) const;

    /// @throws Failure when there is no array to ask
    void RequireArrays() const;

private:
    void UseUnconfigured(const Target& target);
    void UseConfigured(const Target& target);
    void UseDiscovered(const Configuration& configuration);
    void KeepOnly(const std::vector<std::string>& addresses);

    Library library;  // first, so that it outlives the layer and the arrays
    KAccessLayer layer;
    std::vector<SharedArray> arrays;
    std::string problem;
};

}  // namespace Korvel::Ctl
