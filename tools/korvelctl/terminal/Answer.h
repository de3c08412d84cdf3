#pragma once

#include <cstddef>
#include <string>

namespace Korvel::Ctl {

/// Reads one line from standard input, up to a bound. Ends without one when the program is interrupted.
/// @param bound what is longer is cut one character after it, so that the caller sees that it is longer
/// @return the line without its end; empty when there is none
std::string ReadLine(std::size_t bound);

/// Asks for a line that the terminal does not show, and reads it as ReadLine does.
std::string ReadSecret(const std::string& prompt, std::size_t bound);

}  // namespace Korvel::Ctl
