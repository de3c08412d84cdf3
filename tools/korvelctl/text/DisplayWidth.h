#pragma once

#include <cstddef>
#include <string_view>

namespace Korvel::Ctl {

/// @param text UTF-8 without control characters
/// @return how many columns of a terminal it takes: two for a wide character, none for one that combines. The
///         system's own function knows a locale's characters only, and Windows has none.
std::size_t DisplayWidth(std::string_view text);

/// @param text as for DisplayWidth()
/// @return as much of its beginning as fits into so many columns
std::string_view FirstColumns(std::string_view text, std::size_t columns);

}  // namespace Korvel::Ctl
