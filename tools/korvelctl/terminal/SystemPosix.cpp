#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "terminal/Interruption.h"
#include "terminal/System.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace Korvel::Ctl {

void ShareOneHeap() {
#if defined(__GLIBC__)
    mallopt(M_ARENA_MAX, 1);
#endif
}

bool InputIsTerminal() {
    return isatty(STDIN_FILENO) != 0;
}

bool ErrorIsTerminal() {
    return isatty(STDERR_FILENO) != 0;
}

bool OutputCanColour() {
    const char* value = std::getenv("TERM");  // NOLINT(concurrency-mt-unsafe): nothing changes the environment then
    const std::string_view terminal = value == nullptr ? "" : value;
    return isatty(STDOUT_FILENO) == 1 && !terminal.empty() && terminal != "dumb";
}

std::size_t ErrorWidth() {
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : UsualWidth;
}

bool ReadByte(char& byte) {
    constexpr int lookAgain = 100;  // milliseconds: an interruption just before the wait ends it only then
    pollfd input{STDIN_FILENO, POLLIN, 0};
    while (!Interrupted() && poll(&input, 1, lookAgain) <= 0) {
    }
    return !Interrupted() && read(STDIN_FILENO, &byte, 1) == 1;
}

std::shared_ptr<void> HideTyping() {
    termios before{};
    if (tcgetattr(STDIN_FILENO, &before) != 0) {
        return nullptr;
    }
    termios silent = before;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    return {nullptr, [before](void*) { tcsetattr(STDIN_FILENO, TCSAFLUSH, &before); }};
}

void SetEnvironment(const std::string& name, const std::string& value) {
    setenv(name.c_str(), value.c_str(), 1);  // NOLINT(concurrency-mt-unsafe): called before any other thread exists
}

bool CanAppend(const std::string& path) {
    const int file = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, S_IRUSR | S_IWUSR);
    return file >= 0 && close(file) == 0;
}

bool OthersCanRead(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && (status.st_mode & (S_IRGRP | S_IROTH)) != 0;
}

}  // namespace Korvel::Ctl
