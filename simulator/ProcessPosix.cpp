#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

#include "Process.h"

namespace Korvel::Sim {
namespace {

sigset_t EndSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    return signals;
}

}  // namespace

// Every thread inherits the mask, so that the signals wait for the one that asks for them.
Process::Process() {
    const sigset_t signals = EndSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

Process::~Process() = default;

void Process::End() {
    kill(getpid(), SIGTERM);
}

void Process::WaitForEnd() {
    const sigset_t signals = EndSignals();
    int signal = 0;
    sigwait(&signals, &signal);
}

void Process::KeepFilesPrivate() {
    umask(S_IRWXG | S_IRWXO);
}

}  // namespace Korvel::Sim
