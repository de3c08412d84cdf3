#pragma once

#include <string>

#include "array/ArrayState.h"
#include "array/Reply.h"

namespace Korvel::Sim {

/// The requests that an array knows, and what each does.
class Routes {
public:
    /// Carries out the request `method` `target` with the body `body` on `array`. The target is taken as it stands on
    /// the wire. Returns 404 for an unknown path and 405 for a known one with another method.
    static Reply Answer(ArrayState& array, const std::string& method, const std::string& target,
                        const std::string& body);

    /// Returns the reply with the HTTP status `status` to a request that never gets as far as a command.
    static Reply Error(int status, const std::string& message);
};

}  // namespace Korvel::Sim
