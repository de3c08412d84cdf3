#include "terminal/System.h"

#include <cstdlib>
#include <iostream>

#include "terminal/Interruption.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>
#endif
#if defined(__GLIBC__)
#include <malloc.h>
#endif

#if defined(__MINGW32__)
extern "C" {
int _CRT_glob = 0;  // NOLINT: the runtime's own switch; a '*' in a name is a character, not a pattern for files
}
#endif

namespace Korvel::Ctl {
namespace {

#if defined(_WIN32)

/// Turns the terminal's echo off for its own lifetime.
class EchoOff {
public:
    EchoOff() : input(GetStdHandle(STD_INPUT_HANDLE)), changed(GetConsoleMode(input, &before) != 0) {
        if (changed) {
            SetConsoleMode(input, before & ~static_cast<DWORD>(ENABLE_ECHO_INPUT));
        }
    }
    ~EchoOff() {
        if (changed) {
            SetConsoleMode(input, before);
        }
    }
    EchoOff(const EchoOff&) = delete;
    EchoOff& operator=(const EchoOff&) = delete;

private:
    HANDLE input;
    DWORD before = 0;
    bool changed;
};

#else

/// Turns the terminal's echo off for its own lifetime.
class EchoOff {
public:
    EchoOff() : changed(tcgetattr(STDIN_FILENO, &before) == 0) {
        if (changed) {
            termios silent = before;
            silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
        }
    }
    ~EchoOff() {
        if (changed) {
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &before);
        }
    }
    EchoOff(const EchoOff&) = delete;
    EchoOff& operator=(const EchoOff&) = delete;

private:
    termios before{};
    bool changed;
};

#endif

/// Reads one byte from standard input.
/// @return whether there was one before the end, an error or an interruption
bool ReadByte(char& byte) {
#if defined(_WIN32)
    DWORD count = 0;
    return ReadFile(GetStdHandle(STD_INPUT_HANDLE), &byte, 1, &count, nullptr) != 0 && count == 1;
#else
    constexpr int lookAgain = 100;  // milliseconds: an interruption just before the wait ends it only then
    pollfd input{STDIN_FILENO, POLLIN, 0};
    while (!Interrupted() && poll(&input, 1, lookAgain) <= 0) {
    }
    return !Interrupted() && read(STDIN_FILENO, &byte, 1) == 1;
#endif
}

#if defined(_WIN32)

bool IsConsole(DWORD standardHandle) {
    DWORD mode = 0;  // asked of a console only: the runtime calls the null device a terminal, too
    return GetConsoleMode(GetStdHandle(standardHandle), &mode) != 0;
}

#endif

std::string Environment(const char* name) {
    const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nothing changes the environment then
    return value == nullptr ? "" : value;
}

}  // namespace

void ShareOneHeap() {
#if defined(__GLIBC__)
    mallopt(M_ARENA_MAX, 1);
#endif
}

bool InputIsTerminal() {
#if defined(_WIN32)
    return IsConsole(STD_INPUT_HANDLE);
#else
    return isatty(STDIN_FILENO) != 0;
#endif
}

bool ErrorIsTerminal() {
#if defined(_WIN32)
    return IsConsole(STD_ERROR_HANDLE);
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

bool OutputTakesColour() {
    if (!Environment("NO_COLOR").empty()) {
        return false;
    }
#if defined(_WIN32)
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    return GetConsoleMode(output, &mode) != 0 && SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
#else
    const std::string terminal = Environment("TERM");
    return isatty(STDOUT_FILENO) == 1 && !terminal.empty() && terminal != "dumb";
#endif
}

std::size_t ErrorWidth() {
    constexpr std::size_t usual = 80;
#if defined(_WIN32)
    CONSOLE_SCREEN_BUFFER_INFO information;
    return GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &information) != 0 && information.dwSize.X > 0
               ? static_cast<std::size_t>(information.dwSize.X)
               : usual;
#else
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usual;
#endif
}

std::string ReadLine(std::size_t bound) {
    std::string line;
    for (char byte = 0; line.size() <= bound && ReadByte(byte) && byte != '\n';) {
        line += byte;
    }
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    return line;
}

std::string ReadSecret(const std::string& prompt, std::size_t bound) {
    const EchoOff echoOff;  // first, since it drops what was typed before
    std::cerr << prompt << std::flush;
    return ReadLine(bound);
}

void SetEnvironment(const std::string& name, const std::string& value) {
#if defined(_WIN32)
    _putenv_s(name.c_str(), value.c_str());
#else
    setenv(name.c_str(), value.c_str(), 1);  // NOLINT(concurrency-mt-unsafe): called before any other thread exists
#endif
}

bool CanAppend(const std::string& path) {
#if defined(_WIN32)
    // Not made here: the logging library makes the file with rights for its owner alone.
    const DWORD attributes = GetFileAttributesA(path.c_str());
    const bool missing = attributes == INVALID_FILE_ATTRIBUTES;
    const HANDLE file =
        CreateFileA(path.c_str(), FILE_APPEND_DATA | (missing ? DELETE : 0), FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, OPEN_ALWAYS, missing ? FILE_FLAG_DELETE_ON_CLOSE : FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return false;
    }
    CloseHandle(file);
    return true;
#else
    const int file = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, S_IRUSR | S_IWUSR);
    return file >= 0 && close(file) == 0;
#endif
}

bool OthersCanRead(const std::string& path) {
#if defined(_WIN32)
    static_cast<void>(path);
    return false;
#else
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && (status.st_mode & (S_IRGRP | S_IROTH)) != 0;
#endif
}

}  // namespace Korvel::Ctl
