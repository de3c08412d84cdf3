#pragma once

#include <cstddef>
#include <cstdio>

#include "foundation/KFormat.h"
#include "foundation/KLimits.h"

namespace Korvel {

/// Ends the process because a text did not fit its buffer; names the capacity and the format on standard error, never
/// the arguments, which may hold a key.
[[noreturn]] void FailOnOverflow(std::size_t capacity, const char* format) noexcept;

/// A text formatted into a buffer of fixed capacity, its terminating zero included. A text that does not fit ends the
/// process: a request or a registry path that was cut would reach the wrong thing. Kept: fatal-overflow.
template <std::size_t Capacity>
class KBoundedText {
public:
    /// Formats the text, or ends the process.
    template <typename... Arguments>
    explicit KBoundedText(KPartialFormatFor<Arguments...> format, const Arguments&... arguments) {
        const int length = std::snprintf(text, Capacity, format.Text(), Printable(arguments)...);
        // Checked here on every system: not every platform's bounded formatter keeps to its bound.
        if (length < 0 || static_cast<std::size_t>(length) >= Capacity) {
            FailOnOverflow(Capacity, format.Text());
        }
    }

    /// @return the text, zero-terminated; owned by this object
    const char* Text() const { return text; }

private:
    char text[Capacity];
};

using KRegistryPath = KBoundedText<KRegistryPathCapacity>;  ///< an array's subkey
using KRequestText = KBoundedText<KRequestTextCapacity>;    ///< a URL, an API path or a header line
using KErrorText = KBoundedText<KErrorTextCapacity>;        ///< what a KException says about an HTTP status

}  // namespace Korvel
