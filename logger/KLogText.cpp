#include "KLogText.h"

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

void AppendVisible(std::string& result, char character) {
    const auto code = static_cast<unsigned char>(character);
    if (character == '\n') {
        result += "\\n";
    } else if (character == '\r') {
        result += "\\r";
    } else if (character == '\t') {
        result += "\\t";
    } else if (code < 0x20 || code == 0x7f) {
        constexpr char digits[] = "0123456789abcdef";
        result += {'\\', 'x', digits[code >> 4], digits[code & 0xf]};
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
    for (const char character : text) {
        AppendVisible(result, character);
    }
    return result;
}

}  // namespace Korvel
