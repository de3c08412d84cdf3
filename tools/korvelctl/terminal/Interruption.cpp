#include "terminal/Interruption.h"

#include <atomic>

#if defined(_WIN32)
#include <windows.h>
#else
#include <csignal>
#endif

namespace Korvel::Ctl {
namespace {

std::atomic<bool> interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

#if defined(_WIN32)

BOOL WINAPI Remember(DWORD event) {
    if (interrupted.exchange(true)) {
        return FALSE;  // the second time: the system ends the process
    }
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        Sleep(INFINITE);  // the console is going: the system ends the process as soon as this returns
    }
    return TRUE;
}

#else

void Remember(int /*signal*/) {
    interrupted = true;
}

#endif

}  // namespace

void CatchInterruptions() {
#if defined(_WIN32)
    SetConsoleCtrlHandler(Remember, TRUE);
#else
    struct sigaction action {};
    action.sa_handler = Remember;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        // Whoever ends a group of processes or loses a terminal often sends its signal twice; a person means the second
        // one. And not SA_RESTART: reading from a terminal has to end.
        action.sa_flags = signal == SIGINT ? static_cast<int>(SA_RESETHAND) : 0;
        struct sigaction before {};
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
            sigaction(signal, &action, nullptr);
        }
    }
#endif
}

bool Interrupted() {
    return interrupted;
}

}  // namespace Korvel::Ctl
