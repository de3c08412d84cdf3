#include "wire/WireStream.h"

#include <openssl/err.h>

#include <algorithm>

#include "wire/Socket.h"

namespace Korvel::Sim {
namespace {

// TLS counts in int, and so do sockets of Windows.
int Limited(std::size_t size) {
    return static_cast<int>(std::min<std::size_t>(size, 1U << 20U));
}

void Describe(const sockaddr_in& address, std::string& ip, int& port) {
    char text[INET_ADDRSTRLEN] = {};
    ip = inet_ntop(AF_INET, &address.sin_addr, text, sizeof text) != nullptr ? text : "";
    port = ntohs(address.sin_port);
}

}  // namespace

WireStream::WireStream(socket_t socket, SSL_CTX* tls)
    : descriptor(socket), session(tls != nullptr ? SSL_new(tls) : nullptr, SSL_free) {
    if (session) {
        SSL_set_app_data(session.get(), this);
        SSL_set_fd(session.get(), static_cast<int>(descriptor));
    }
}

WireStream::~WireStream() {
    if (session && !dropped && !broken) {
        SSL_shutdown(session.get());
    }
    // The queue of errors belongs to the thread, which serves other connections after this one.
    ERR_clear_error();
}

WireStream& WireStream::Of(const httplib::Request& request) {
    return *static_cast<WireStream*>(SSL_get_app_data(request.ssl));
}

bool WireStream::Handshake(std::chrono::seconds patience) {
    SetPatience(patience);
    broken = session && SSL_accept(session.get()) != 1;
    return !broken;
}

void WireStream::SetPatience(std::chrono::seconds patience) const {
    Socket::LimitWaiting(descriptor, patience);
}

bool WireStream::WaitForRequest(std::chrono::seconds patience) const {
    return (session && SSL_pending(session.get()) > 0) || Socket::WaitForBytes(descriptor, patience);
}

void WireStream::BeginRequest() {
    head.clear();
    headComplete = false;
    noted = false;
    ++requests;
}

bool WireStream::FinishHead() {
    const bool finished = headComplete;
    for (char byte = 0; !head.empty() && !headComplete && read(&byte, 1) == 1;) {
    }
    return finished;
}

void WireStream::Reset() {
    const linger atOnce = {.l_onoff = 1, .l_linger = 0};
    setsockopt(descriptor, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&atOnce), sizeof atOnce);
    Drop();
}

void WireStream::SwallowHello() const {
    char bytes[16384];
    Socket::ReceiveBytes(descriptor, bytes, sizeof bytes);
}

void WireStream::SendUnsealed(const std::string& bytes) const {
    Socket::SendBytes(descriptor, bytes.data(), Limited(bytes.size()));
}

int WireStream::ClientPort() const {
    std::string ip;
    int port = 0;
    get_remote_ip_and_port(ip, port);
    return port;
}

ssize_t WireStream::read(char* ptr, size_t size) {
    if (dropped || broken) {
        return -1;
    }
    const ssize_t count =
        session ? SSL_read(session.get(), ptr, Limited(size)) : Socket::ReceiveBytes(descriptor, ptr, Limited(size));
    if (count > 0) {
        KeepHead(ptr, static_cast<std::size_t>(count));
    } else {
        broken = true;
    }
    return count;
}

ssize_t WireStream::write(const char* ptr, size_t size) {
    if (dropped || broken) {
        return -1;
    }
    const ssize_t count =
        session ? SSL_write(session.get(), ptr, Limited(size)) : Socket::SendBytes(descriptor, ptr, Limited(size));
    broken = count <= 0;
    return count;
}

void WireStream::get_remote_ip_and_port(std::string& ip, int& port) const {
    sockaddr_in address = {};
    socklen_t length = sizeof address;
    getpeername(descriptor, reinterpret_cast<sockaddr*>(&address), &length);
    Describe(address, ip, port);
}

void WireStream::get_local_ip_and_port(std::string& ip, int& port) const {
    sockaddr_in address = {};
    socklen_t length = sizeof address;
    getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &length);
    Describe(address, ip, port);
}

void WireStream::KeepHead(const char* bytes, std::size_t count) {
    if (headComplete) {
        return;
    }
    head.append(bytes, count);
    if (const std::size_t end = head.find("\r\n\r\n", head.size() - std::min(head.size(), count + 3));
        end != std::string::npos) {
        head.resize(end);
        headComplete = true;
    }
}

}  // namespace Korvel::Sim
