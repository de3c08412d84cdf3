#pragma once

namespace Korvel::Ctl {

/// Makes Ctrl-C, a lost terminal and the system's request to end be remembered instead of ending the process. Reading
/// from a terminal then ends, too. What the caller of the program has told it to ignore stays ignored.
void CatchInterruptions();

/// @return whether one of them has come
bool Interrupted();

}  // namespace Korvel::Ctl
