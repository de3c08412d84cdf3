#include "terminal/System.h"

#include <cstdlib>
#include <iostream>

#if defined(_WIN32)
#include <windows.h>
#else
#include <termios.h>
#include <unistd.h>
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

}  // namespace

bool InputIsTerminal() {
#if defined(_WIN32)
    DWORD mode = 0;  // asked of a console only: the runtime calls the null device a terminal, too
    return GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode) != 0;
#else
    return isatty(STDIN_FILENO) != 0;
#endif
}

std::string ReadHiddenLine() {
    const EchoOff echoOff;
    std::string line;
    std::getline(std::cin, line);
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    return line;
}

void SetEnvironment(const std::string& name, const std::string& value) {
#if defined(_WIN32)
    _putenv_s(name.c_str(), value.c_str());
#else
    setenv(name.c_str(), value.c_str(), 1);  // NOLINT(concurrency-mt-unsafe): called before any other thread exists
#endif
}

}  // namespace Korvel::Ctl
