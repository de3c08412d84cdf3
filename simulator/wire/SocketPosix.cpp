#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include "wire/Socket.h"

namespace Korvel::Sim {

void Socket::Close(socket_t socket) {
    close(socket);
}

void Socket::ShutDown(socket_t socket) {
    shutdown(socket, SHUT_RDWR);
}

// The HTTP library's own default would let two processes share one port.
void Socket::ClaimPort(socket_t socket) {
    const int yes = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

void Socket::LimitWaiting(socket_t socket, std::chrono::seconds patience) {
    const timeval limit = {.tv_sec = patience.count(), .tv_usec = 0};
    setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
}

bool Socket::WaitForBytes(socket_t socket, std::chrono::seconds patience) {
    pollfd waiting = {.fd = socket, .events = POLLIN, .revents = 0};
    return poll(&waiting, 1, static_cast<int>(std::chrono::milliseconds(patience).count())) > 0;
}

ssize_t Socket::ReceiveBytes(socket_t socket, char* bytes, int count) {
    return recv(socket, bytes, static_cast<std::size_t>(count), 0);
}

ssize_t Socket::SendBytes(socket_t socket, const char* bytes, int count) {
    return send(socket, bytes, static_cast<std::size_t>(count), MSG_NOSIGNAL);
}

std::optional<std::uint32_t> Socket::ParseAddress(const std::string& text) {
    in_addr address = {};
    return inet_pton(AF_INET, text.c_str(), &address) == 1 ? std::optional(ntohl(address.s_addr)) : std::nullopt;
}

}  // namespace Korvel::Sim
