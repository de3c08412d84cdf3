#pragma once

#include <cstddef>
#include <memory>
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

/// @return whether standard output is a terminal that shows colours
bool OutputCanColour();

/// The columns of a terminal that does not tell.
inline constexpr std::size_t UsualWidth = 80;

/// @return how many columns a line of standard error's terminal has, as it is now; at least one
std::size_t ErrorWidth();

/// Reads one byte from standard input.
/// @return whether there was one before the end, an error or an interruption
bool ReadByte(char& byte);

/// Drops what has been typed and not been read, and lets the terminal show nothing of what follows.
/// @return shows it again when it goes
std::shared_ptr<void> HideTyping();

/// Sets an environment variable of this process, for the libraries it loads.
void SetEnvironment(const std::string& name, const std::string& value);

/// @return whether a file can be appended to; one that is missing is made, for its owner alone where the system has
/// that
bool CanAppend(const std::string& path);

/// @return whether users other than the file's own can read it; false where that cannot be told
bool OthersCanRead(const std::string& path);

}  // namespace Korvel::Ctl
