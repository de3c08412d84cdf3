#pragma once

#include <string>

#include "KArrayState.h"

namespace Korvel {

/// A reply of the array.
struct KAnswer {
    int status = 200;                             ///< HTTP status
    KArrayState::Document body;                   ///< the body; never null
    std::string contentType = "application/xml";  ///< its type
    std::string location;                         ///< where a redirect points, else empty
};

/// The requests that an array knows, and what each does.
class KRoutes {
public:
    /// Carries out the request `method` `target` with the body `body` on `array`. The target is taken as it stands on
    /// the wire. Returns 404 for an unknown path and 405 for a known one with another method.
    static KAnswer Answer(KArrayState& array, const std::string& method, const std::string& target,
                          const std::string& body);

    /// Returns the reply with the HTTP status `status` to a request that never gets as far as a command.
    static KAnswer Error(int status, const std::string& message);
};

}  // namespace Korvel
