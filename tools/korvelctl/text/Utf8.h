#pragma once

#include <cstddef>
#include <string_view>

namespace Korvel::Ctl {

/// A character at the front of a text.
struct Utf8Character {
    char32_t code = 0;     ///< its number; 0 when there is none
    std::size_t size = 1;  ///< how many bytes it takes; 1 when there is none
    bool valid = false;    ///< whether the bytes are a character
};

/// Reads the first character of a text that is not empty. Overlong forms, surrogates and cut sequences are none.
Utf8Character FirstCharacter(std::string_view text);

}  // namespace Korvel::Ctl
