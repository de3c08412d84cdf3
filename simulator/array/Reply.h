#pragma once

#include <string>

#include "array/ArrayState.h"

namespace Korvel::Sim {

/// A reply of the array.
struct Reply {
    int status = 200;                             ///< HTTP status
    ArrayState::Document body;                    ///< the body; never null
    std::string contentType = "application/xml";  ///< its type
    std::string location;                         ///< where a redirect points, else empty
};

}  // namespace Korvel::Sim
