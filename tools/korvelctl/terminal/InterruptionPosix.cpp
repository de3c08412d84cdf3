#include <atomic>
#include <csignal>

#include "terminal/Interruption.h"

namespace Korvel::Ctl {
namespace {

std::atomic<bool> interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

void Remember(int /*signal*/) {
    interrupted = true;
}

}  // namespace

void CatchInterruptions() {
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
}

bool Interrupted() {
    return interrupted;
}

}  // namespace Korvel::Ctl
