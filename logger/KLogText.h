#pragma once

#include <chrono>
#include <cstdarg>
#include <string>
#include <string_view>

namespace Korvel {

/// The text of a log record.
class KLogText {
public:
    /// Puts a record together: time, level, module and text, each after a blank, in one line with its line feed.
    /// @param time when it happened; shown in UTC with milliseconds
    /// @param module the writer's name, zero-terminated, or null
    /// @param format a printf format, zero-terminated, or null; shown as it stands if it can't be formatted
    /// @param arguments what `format` asks for
    /// @throws std::bad_alloc, std::length_error
    static std::string Record(std::chrono::system_clock::time_point time, int level, const char* module,
                              const char* format, va_list arguments);

    /// Makes control characters visible ("\n", "\r", "\t", "\x1b", "\xc2\x9b"), and the marks that turn the direction
    /// of a text, so that it can't begin a record of its own nor steer the terminal it is shown on. Backslashes stay
    /// single: registry paths are to be read as they are.
    /// @throws std::bad_alloc, std::length_error
    static std::string Visible(std::string_view text);
};

}  // namespace Korvel
