#include "text/Utf8.h"

namespace Korvel::Ctl {
namespace {

/// What the first byte of a sequence tells.
struct Lead {
    std::size_t size;
    char32_t smallest;  ///< what is smaller is written shorter
    unsigned char mask;
    unsigned char pattern;
};

constexpr Lead Leads[] = {
    {1, 0x00, 0x80, 0x00}, {2, 0x80, 0xE0, 0xC0}, {3, 0x800, 0xF0, 0xE0}, {4, 0x10000, 0xF8, 0xF0}};

bool IsCharacter(char32_t code) {
    return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

}  // namespace

Utf8Character FirstCharacter(std::string_view text) {
    const auto front = static_cast<unsigned char>(text.front());
    for (const Lead& lead : Leads) {
        if ((front & lead.mask) != lead.pattern || text.size() < lead.size) {
            continue;
        }
        char32_t code = front & static_cast<unsigned char>(~lead.mask);
        for (const char next : text.substr(1, lead.size - 1)) {
            const auto byte = static_cast<unsigned char>(next);
            if ((byte & 0xC0U) != 0x80U) {
                return {};
            }
            code = (code << 6U) | (byte & 0x3FU);
        }
        if (code < lead.smallest || !IsCharacter(code)) {
            return {};
        }
        return {code, lead.size, true};
    }
    return {};
}

}  // namespace Korvel::Ctl
