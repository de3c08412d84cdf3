#pragma once

#include <cstddef>
#include <string>

namespace Korvel::Ctl {

/// The few calls that differ between the systems.

/// Lets all threads take their memory from one heap. A heap of a thread's own grows by a system call for each page in
/// glibc, which costs a long list a fifth of its time. Call it before there is a second thread.
void ShareOneHeap();

/// @return whether standard input is a terminal with a person at it
bool InputIsTerminal();

/// @return whether standard error is a terminal
bool ErrorIsTerminal();

/// @return whether standard output is a terminal that shows colours, and the environment's NO_COLOR does not refuse
/// them
bool OutputTakesColour();

/// @return how many columns a line of standard error's terminal has, as it is now; at least one
std::size_t ErrorWidth();

/// The longest line that an answer to a question may have.
inline constexpr std::size_t LongestAnswer = 64;

/// Reads one line from standard input, up to a bound. Ends without one when the program is interrupted.
/// @param bound what is longer is cut one character after it, so that the caller sees that it is longer
/// @return the line without its end; empty when there is none
std::string ReadLine(std::size_t bound);

/// Asks for a line that the terminal does not show, and reads it as ReadLine does.
std::string ReadSecret(const std::string& prompt, std::size_t bound);

/// Sets an environment variable of this process, for the libraries it loads.
void SetEnvironment(const std::string& name, const std::string& value);

/// @return whether a file can be appended to; one that is missing is made, for its owner alone where the system has
/// that
bool CanAppend(const std::string& path);

/// @return whether users other than the file's own can read it; false where that cannot be told
bool OthersCanRead(const std::string& path);

}  // namespace Korvel::Ctl
