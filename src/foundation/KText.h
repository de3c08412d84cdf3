#pragma once

#include <cstring>
#include <string>
#include <string_view>

namespace Korvel {

/// @return the text up to its first zero byte, as some operations take it; a view into `text`
inline std::string_view UpToZero(const std::string& text) {
    return std::string_view(text.c_str());
}

/// Tells whether a text up to its first zero byte is the wanted one; most texts are not, and take one comparison.
inline bool IsUpToZero(const std::string& text, const std::string& wanted) {
    return std::strcmp(text.c_str(), wanted.c_str()) == 0 && UpToZero(wanted).size() == wanted.size();
}

}  // namespace Korvel
