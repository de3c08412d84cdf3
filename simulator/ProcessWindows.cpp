#include <windows.h>

#include "Process.h"

namespace Korvel::Sim {
namespace {

HANDLE endAsked = nullptr;
HANDLE endReached = nullptr;

// Once a handler returns from anything but Ctrl-C or Ctrl-Break, the system ends the process: that has to wait for what
// is still to be saved.
BOOL WINAPI Handle(DWORD event) {
    SetEvent(endAsked);
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        WaitForSingleObject(endReached, INFINITE);
    }
    return TRUE;
}

}  // namespace

Process::Process() {
    endAsked = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    endReached = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    SetConsoleCtrlHandler(&Handle, TRUE);
}

// The events stay: a handler may be about to use them.
Process::~Process() {
    SetEvent(endReached);
}

void Process::End() {
    SetEvent(endAsked);
}

void Process::WaitForEnd() {
    WaitForSingleObject(endAsked, INFINITE);
}

// A new file has the rights that its folder gives, and folders of a user's own are the user's alone.
void Process::KeepFilesPrivate() {}

}  // namespace Korvel::Sim
