#include <windows.h>

#include <atomic>

#include "terminal/Interruption.h"

namespace Korvel::Ctl {
namespace {

std::atomic<bool> interrupted{false};

BOOL WINAPI Remember(DWORD event) {
    if (interrupted.exchange(true)) {
        return FALSE;  // the second time: the system ends the process
    }
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        Sleep(INFINITE);  // the console is going: the system ends the process as soon as this returns
    }
    return TRUE;
}

}  // namespace

void CatchInterruptions() {
    SetConsoleCtrlHandler(Remember, TRUE);
}

bool Interrupted() {
    return interrupted;
}

}  // namespace Korvel::Ctl
