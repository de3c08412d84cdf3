#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <ctime>

#include "KLogOutput.h"

namespace Korvel {

namespace {

/// Keeps a reader that has gone away from ending the process with SIGPIPE while this lives.
class KBrokenPipeGuard {
public:
    KBrokenPipeGuard() noexcept {
        sigset_t pending;
        sigemptyset(&pipeSignal);
        sigaddset(&pipeSignal, SIGPIPE);
        sigpending(&pending);
        alreadyPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &pipeSignal, &callersMask);
    }
    ~KBrokenPipeGuard() {
        const timespec noTime{};
        while (!alreadyPending && sigtimedwait(&pipeSignal, nullptr, &noTime) < 0 && errno == EINTR) {
        }
        pthread_sigmask(SIG_SETMASK, &callersMask, nullptr);
    }
    KBrokenPipeGuard(const KBrokenPipeGuard&) = delete;
    KBrokenPipeGuard& operator=(const KBrokenPipeGuard&) = delete;

private:
    sigset_t pipeSignal{};
    sigset_t callersMask{};
    bool alreadyPending = false;
};

/// @return whether it is worth trying again
bool WaitUntilWritable(int descriptor) noexcept {
    if (errno == EINTR) {
        return true;
    }
    pollfd writable{descriptor, POLLOUT, 0};
    return errno == EAGAIN && (poll(&writable, 1, -1) > 0 || errno == EINTR);
}

// One lock for all outputs: a record that a pipe takes in pieces stays in one piece. Needs no destructor.
pthread_mutex_t oneAtATime = PTHREAD_MUTEX_INITIALIZER;

}  // namespace

KLogOutput KLogOutput::StandardError() noexcept {
    return KLogOutput(STDERR_FILENO);
}

KLogOutput KLogOutput::AppendTo(const char* path, std::error_code& error) noexcept {
    const int descriptor = open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, S_IRUSR | S_IWUSR);
    error = descriptor < 0 ? std::error_code(errno, std::generic_category()) : std::error_code();
    return KLogOutput(descriptor);
}

bool KLogOutput::Write(std::string_view bytes) const noexcept {
    const KBrokenPipeGuard guard;
    const int descriptor = static_cast<int>(handle);
    pthread_mutex_lock(&oneAtATime);
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor, bytes.data(), bytes.size());
        if (written == 0 || (written < 0 && !WaitUntilWritable(descriptor))) {
            break;
        }
        bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    pthread_mutex_unlock(&oneAtATime);
    return bytes.empty();
}

}  // namespace Korvel
