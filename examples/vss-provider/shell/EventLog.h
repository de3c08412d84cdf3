#pragma once

#include <string>

namespace VssExample {

/// Tells the administrator something: a warning in the system's log of events, under the provider's name. Where the
/// environment variable KORVEL_VSS_LOG names a file, the line is appended there, too. What cannot be written is lost.
void WriteEvent(const std::string& line) noexcept;

}  // namespace VssExample
