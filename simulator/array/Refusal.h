#pragma once

#include <stdexcept>

namespace Korvel::Sim {

/// A command or listing that the array refuses; the text is the status message of the reply.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace Korvel::Sim
