#pragma once

#include <string>
#include <string_view>

namespace Korvel::Ctl {

/// Makes visible what could steer a terminal or turn round what is read: control characters, also those beyond ASCII,
/// marks of writing direction, and bytes that are no UTF-8. An array's texts are shown only through this.
std::string Printable(std::string_view text);

}  // namespace Korvel::Ctl
