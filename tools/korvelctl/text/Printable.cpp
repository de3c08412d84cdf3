#include "text/Printable.h"

namespace Korvel::Ctl {

std::string Printable(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string visible;
    visible.reserve(text.size());
    for (const char byte : text) {
        const auto code = static_cast<unsigned char>(byte);
        if (code >= 0x20 && code != 0x7f) {
            visible += byte;
        } else {
            visible += "\\x";
            visible += digits[code >> 4U];
            visible += digits[code & 0xFU];
        }
    }
    return visible;
}

}  // namespace Korvel::Ctl
