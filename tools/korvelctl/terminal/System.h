#pragma once

#include <string>

namespace Korvel::Ctl {

/// The few calls that differ between the systems.

/// @return whether standard input is a terminal with a person at it
bool InputIsTerminal();

/// Reads one line from standard input. On a terminal the line is not shown while it is typed.
/// @return the line without its end; empty when there is none
std::string ReadHiddenLine();

/// Sets an environment variable of this process, for the libraries it loads.
void SetEnvironment(const std::string& name, const std::string& value);

}  // namespace Korvel::Ctl
