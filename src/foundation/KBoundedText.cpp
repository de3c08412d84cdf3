#include "foundation/KBoundedText.h"

#include <cstdlib>

namespace Korvel {

void FailOnOverflow(std::size_t capacity, const char* format) noexcept {
    static_cast<void>(std::fprintf(stderr,
                                   "KorvelAccessLibrary: a text does not fit its %lu characters, format \"%s\"\n",
                                   static_cast<unsigned long>(capacity), format));
    std::abort();
}

}  // namespace Korvel
