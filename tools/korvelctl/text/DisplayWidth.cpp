#include "text/DisplayWidth.h"

#include <algorithm>
#include <iterator>

#include "text/Utf8.h"
#include "text/WidthTable.h"

namespace Korvel::Ctl {
namespace {

template <std::size_t Count>
bool IsIn(const CharacterRange (&table)[Count], char32_t code) {
    const auto* range =
        std::lower_bound(std::begin(table), std::end(table), code,
                         [](const CharacterRange& entry, char32_t sought) { return entry.last < sought; });
    return range != std::end(table) && range->first <= code;
}

std::size_t WidthOf(char32_t code) {
    return IsIn(CharactersWithoutWidth, code) ? 0 : IsIn(WideCharacters, code) ? 2 : 1;
}

}  // namespace

std::size_t DisplayWidth(std::string_view text) {
    if (std::all_of(text.begin(), text.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; })) {
        return text.size();  // as nearly every text of a long list
    }
    std::size_t width = 0;
    while (!text.empty()) {
        const Utf8Character next = FirstCharacter(text);
        width += WidthOf(next.code);
        text.remove_prefix(next.size);
    }
    return width;
}

std::string_view FirstColumns(std::string_view text, std::size_t columns) {
    std::size_t size = 0;
    while (size < text.size()) {
        const Utf8Character next = FirstCharacter(text.substr(size));
        const std::size_t width = WidthOf(next.code);
        if (width > columns) {
            break;
        }
        columns -= width;
        size += next.size;
    }
    return text.substr(0, size);
}

}  // namespace Korvel::Ctl
