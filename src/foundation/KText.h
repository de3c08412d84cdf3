#pragma once

#include <string>
#include <string_view>

namespace Korvel {

/// @return the text up to its first zero byte, as some operations take it; a view into `text`
inline std::string_view UpToZero(const std::string& text) {
    return std::string_view(text.c_str());
}

}  // namespace Korvel
