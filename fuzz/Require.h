#pragma once

#include <cstdlib>
#include <iostream>

namespace Korvel::Fuzz {

/// Ends the process, and with it the fuzzer's run, when what has to hold for any input does not.
inline void Require(bool holds, const char* what) {
    if (!holds) {
        std::cerr << "does not hold: " << what << '\n';
        std::abort();
    }
}

}  // namespace Korvel::Fuzz
