#include "wire/Socket.h"

namespace Korvel::Sim {
namespace {

template <typename Value>
void SetOption(socket_t socket, int option, const Value& value) {
    setsockopt(socket, SOL_SOCKET, option, reinterpret_cast<const char*>(&value), sizeof value);
}

}  // namespace

void Socket::Close(socket_t socket) {
    closesocket(socket);
}

void Socket::ShutDown(socket_t socket) {
    shutdown(socket, SD_BOTH);
}

// What POSIX calls reusing an address would let two processes share it here.
void Socket::ClaimPort(socket_t socket) {
    SetOption(socket, SO_EXCLUSIVEADDRUSE, BOOL{TRUE});
}

void Socket::LimitWaiting(socket_t socket, std::chrono::seconds patience) {
    const auto limit = static_cast<DWORD>(std::chrono::milliseconds(patience).count());
    SetOption(socket, SO_RCVTIMEO, limit);
    SetOption(socket, SO_SNDTIMEO, limit);
}

bool Socket::WaitForBytes(socket_t socket, std::chrono::seconds patience) {
    WSAPOLLFD waiting = {.fd = socket, .events = POLLIN, .revents = 0};
    return WSAPoll(&waiting, 1, static_cast<int>(std::chrono::milliseconds(patience).count())) > 0;
}

ssize_t Socket::ReceiveBytes(socket_t socket, char* bytes, int count) {
    return recv(socket, bytes, count, 0);
}

ssize_t Socket::SendBytes(socket_t socket, const char* bytes, int count) {
    return send(socket, bytes, count, 0);
}

std::optional<std::uint32_t> Socket::ParseAddress(const std::string& text) {
    in_addr address = {};
    return inet_pton(AF_INET, text.c_str(), &address) == 1 ? std::optional(std::uint32_t{ntohl(address.s_addr)})
                                                           : std::nullopt;
}

}  // namespace Korvel::Sim
