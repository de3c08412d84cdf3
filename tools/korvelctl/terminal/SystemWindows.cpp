#include <windows.h>

#include <cstdlib>

#include "terminal/System.h"

#if defined(__MINGW32__)
extern "C" {
int _CRT_glob = 0;  // NOLINT: the runtime's own switch; a '*' in a name is a character, not a pattern for files
}
#endif

namespace Korvel::Ctl {
namespace {

bool IsConsole(DWORD standardHandle) {
    DWORD mode = 0;  // asked of a console only: the runtime calls the null device a terminal, too
    return GetConsoleMode(GetStdHandle(standardHandle), &mode) != 0;
}

}  // namespace

void ShareOneHeap() {}

bool InputIsTerminal() {
    return IsConsole(STD_INPUT_HANDLE);
}

bool ErrorIsTerminal() {
    return IsConsole(STD_ERROR_HANDLE);
}

bool OutputCanColour() {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    return GetConsoleMode(output, &mode) != 0 && SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

std::size_t ErrorWidth() {
    CONSOLE_SCREEN_BUFFER_INFO information;
    return GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &information) != 0 && information.dwSize.X > 0
               ? static_cast<std::size_t>(information.dwSize.X)
               : UsualWidth;
}

bool ReadByte(char& byte) {
    DWORD count = 0;
    return ReadFile(GetStdHandle(STD_INPUT_HANDLE), &byte, 1, &count, nullptr) != 0 && count == 1;
}

std::shared_ptr<void> HideTyping() {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD before = 0;
    if (GetConsoleMode(input, &before) == 0) {
        return nullptr;
    }
    SetConsoleMode(input, before & ~static_cast<DWORD>(ENABLE_ECHO_INPUT));
    return {nullptr, [input, before](void*) { SetConsoleMode(input, before); }};
}

void SetEnvironment(const std::string& name, const std::string& value) {
    _putenv_s(name.c_str(), value.c_str());
}

bool CanAppend(const std::string& path) {
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
}

bool OthersCanRead(const std::string& /*path*/) {
    return false;
}

}  // namespace Korvel::Ctl
