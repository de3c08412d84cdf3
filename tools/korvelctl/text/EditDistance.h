#pragma once

#include <cstddef>
#include <string_view>

namespace Korvel::Ctl {

/// @return how many bytes have to be put, taken away or changed to make one text of the other
std::size_t EditDistance(std::string_view from, std::string_view to);

}  // namespace Korvel::Ctl
