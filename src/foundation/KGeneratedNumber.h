#pragma once

#include <cstdlib>
#include <ctime>

namespace Korvel {

/// Draws the number that goes into a generated name, 1 to 1000000 (to 32768 where rand() is that narrow).
///
/// The generator is the process's own and is seeded anew with the clock's second for every number, so names generated
/// in one second share it. Kept: repeated-numbers.
inline int DrawNameNumber() {
    // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp): a name, not a secret
    std::srand(static_cast<unsigned int>(std::time(nullptr)));
    return std::rand() % 1000000 + 1;  // NOLINT(cert-msc30-c,cert-msc50-cpp)
}

}  // namespace Korvel
