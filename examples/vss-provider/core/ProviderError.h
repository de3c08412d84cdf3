#pragma once

#include <stdexcept>
#include <string>

namespace VssExample {

/// Why a call of the VSS service could not be carried out. The text says it to an administrator.
class ProviderError : public std::runtime_error {
public:
    /// What the service is to be told.
    enum class Kind {
        BadState,  ///< the call is out of order
        NotFound,  ///< there is no such snapshot set, LUN or snapshot
        Veto,      ///< the arrays did not do what was wanted
    };

    ProviderError(Kind kindOfError, const std::string& text) : std::runtime_error(text), kind(kindOfError) {}

    Kind kind;
};

}  // namespace VssExample
