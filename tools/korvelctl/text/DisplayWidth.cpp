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

}  // namespace

std::size_t DisplayWidth(std::string_view text) {
    if (std::all_of(text.begin(), text.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; })) {
        return text.size();  // as nearly every text of a long list
    }
    std::size_t width = 0;
    while (!text.empty()) {
        const Utf8Character next = FirstCharacter(text);
        if (!IsIn(CharactersWithoutWidth, next.code)) {
            width += IsIn(WideCharacters, next.code) ? 2 : 1;
        }
        text.remove_prefix(next.size);
    }
    return width;
}

}  // namespace Korvel::Ctl
