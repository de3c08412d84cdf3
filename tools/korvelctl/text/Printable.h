#pragma once

#include <string>
#include <string_view>

namespace Korvel::Ctl {

/// Makes control characters visible, so that a name an array sends cannot steer the terminal.
std::string Printable(std::string_view text);

}  // namespace Korvel::Ctl
