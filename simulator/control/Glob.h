#pragma once

#include <string_view>

namespace Korvel::Sim {

/// Tells whether a text has the shape of a pattern: "*" stands for any characters, "?" for any one, "[...]" for one of
/// those in the brackets ("a-z" a range, "!" in front all others), every other character for itself.
bool HasShape(std::string_view text, std::string_view pattern);

}  // namespace Korvel::Sim
