#pragma once

#include <cstddef>
#include <string_view>

namespace Korvel::Ctl {

/// @param text UTF-8 without control characters
/// @return how many columns of a terminal it takes: two for a wide character, none for one that combines. The
///         system's own function knows a locale's characters only, and Windows has none.
std::size_t DisplayWidth(std::string_view text);

}  // namespace Korvel::Ctl
