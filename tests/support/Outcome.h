#pragma once

#include <exception>
#include <stdexcept>
#include <string>

#include "foundation/KException.h"

namespace Korvel {

/// How a call ended, as one text: its status, or its exception with the text that a caller reads from it.
template <typename Call>
std::string Outcome(Call call) {
    try {
        return std::to_string(call());
    } catch (const KException& error) {
        return std::string("KException: ") + error.ErrorText();
    } catch (const std::invalid_argument& error) {
        return std::string("invalid_argument: ") + error.what();
    }
}

}  // namespace Korvel
