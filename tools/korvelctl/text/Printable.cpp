#include "text/Printable.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "text/Utf8.h"

namespace Korvel::Ctl {
namespace {

struct Range {
    char32_t first;
    char32_t last;
};

constexpr Range Steering[] = {
    {0x00, 0x1F},     {0x7F, 0x9F},      // control characters
    {0x61C, 0x61C},   {0x200E, 0x200F},  // marks of writing direction
    {0x2028, 0x202E}, {0x2066, 0x2069},  // ends of lines, embeddings and isolates
};

bool IsSteering(char32_t character) {
    return std::any_of(std::begin(Steering), std::end(Steering),
                       [character](const Range& range) { return character >= range.first && character <= range.last; });
}

void AppendHex(std::string& text, char32_t number, std::size_t digits) {
    for (std::size_t shift = digits * 4; shift != 0;) {
        shift -= 4;
        text += "0123456789abcdef"[(number >> shift) & 0xFU];
    }
}

}  // namespace

std::string Printable(std::string_view text) {
    const auto isPlain = [](char byte) { return byte >= 0x20 && byte < 0x7F; };
    std::string visible(text.begin(), std::find_if_not(text.begin(), text.end(), isPlain));
    text.remove_prefix(visible.size());
    while (!text.empty()) {
        const Utf8Character next = FirstCharacter(text);
        if (!next.valid || next.code < 0x80) {
            const auto byte = static_cast<unsigned char>(text.front());
            if (!next.valid || IsSteering(next.code)) {
                visible += "\\x";
                AppendHex(visible, byte, 2);
            } else {
                visible += text.front();
            }
        } else if (IsSteering(next.code)) {
            visible += "\\u";
            AppendHex(visible, next.code, 4);
        } else {
            visible += text.substr(0, next.size);
        }
        text.remove_prefix(next.size);
    }
    return visible;
}

}  // namespace Korvel::Ctl
