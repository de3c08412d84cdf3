#include "KLogText.h"

#include <algorithm>
#include <cstdio>

namespace Korvel {

namespace {

std::string Timestamp(std::chrono::system_clock::time_point time) {
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(std::chrono::floor<std::chrono::milliseconds>(time - day));
    char text[64];
    (void)std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year()),
                        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                        static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                        static_cast<int>(clock.seconds().count()), static_cast<int>(clock.subseconds().count()));
    return text;
}

std::string Formatted(const char* format, va_list arguments) {
    va_list measured;
    va_copy(measured, arguments);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the analyzer does not see through va_copy
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length < 0) {
        return std::string("(can't be formatted) ") + format;
    }
    std::string text(static_cast<std::size_t>(length), '\0');
    (void)std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

void AppendEscaped(std::string& result, std::string_view bytes) {
    constexpr char digits[] = "0123456789abcdef";
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        result += {'\\', 'x', digits[code >> 4], digits[code & 0xf]};
    }
}

/// @return the length of the character beyond ASCII at the beginning of a text in UTF-8, if it would steer a terminal
/// or
///         turn the line around: U+0080 to U+009F, U+202A to U+202E, U+2066 to U+2069; otherwise 0
std::size_t SteeringLength(std::string_view text) {
    const auto isBetween = [&](std::size_t at, unsigned char first, unsigned char last) {
        return at < text.size() && static_cast<unsigned char>(text[at]) >= first &&
               static_cast<unsigned char>(text[at]) <= last;
    };
    if (text.starts_with("\xc2")) {
        return isBetween(1, 0x80, 0x9f) ? 2 : 0;
    }
    const bool turns = (text.starts_with("\xe2\x80") && isBetween(2, 0xaa, 0xae)) ||
                       (text.starts_with("\xe2\x81") && isBetween(2, 0xa6, 0xa9));
    return turns ? 3 : 0;
}

void AppendVisible(std::string& result, char character) {
    const auto code = static_cast<unsigned char>(character);
    if (character == '\n') {
        result += "\\n";
    } else if (character == '\r') {
        result += "\\r";
    } else if (character == '\t') {
        result += "\\t";
    } else if (code < 0x20 || code == 0x7f) {
        AppendEscaped(result, {&character, 1});
    } else {
        result += character;
    }
}

}  // namespace

std::string KLogText::Record(std::chrono::system_clock::time_point time, int level, const char* module,
                             const char* format, va_list arguments) {
    std::string record = Timestamp(time) + ' ' + std::to_string(level) + ' ';
    record += Visible(module == nullptr ? "-" : module);
    record += ' ';
    record += Visible(format == nullptr ? std::string() : Formatted(format, arguments));
    record += '\n';
    return record;
}

std::string KLogText::Visible(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t steering = SteeringLength(text);
        if (steering > 0) {
            AppendEscaped(result, text.substr(0, steering));
        } else {
            AppendVisible(result, text.front());
        }
        text.remove_prefix(std::max<std::size_t>(steering, 1));
    }
    return result;
}

}  // namespace Korvel
