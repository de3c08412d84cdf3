#include "wire/LoopbackServer.h"

#include <stdexcept>
#include <utility>

#include "wire/GrowingPool.h"
#include "wire/Socket.h"

namespace Korvel::Sim {
namespace {

constexpr std::chrono::seconds patience{60};  // a client may run under a debugger
constexpr std::chrono::seconds silence{10};   // of a client that has asked for nothing yet
constexpr std::chrono::seconds keepAlive{5};
constexpr std::size_t longestBody = std::size_t{256} << 20U;  // more than the state of a large array
constexpr std::size_t requestsPerConnection = 1000;

}  // namespace

// A connection that Stop can reach: it is closed only after it has left the set, so no number of a closed socket that
// the system has given to another one is ever shut down.
class LoopbackServer::OpenSocket {
public:
    OpenSocket(LoopbackServer& owner, socket_t sock) : server(owner), descriptor(sock) {
        const std::lock_guard lock(server.mutex);
        server.open.insert(descriptor);
    }

    ~OpenSocket() {
        const std::lock_guard lock(server.mutex);
        server.open.erase(descriptor);
        Socket::Close(descriptor);
    }

    OpenSocket(const OpenSocket&) = delete;
    OpenSocket& operator=(const OpenSocket&) = delete;

private:
    LoopbackServer& server;
    socket_t descriptor;
};

LoopbackServer::LoopbackServer(SSL_CTX* tls) : tlsContext(tls) {
    set_address_family(AF_INET);
    set_tcp_nodelay(true);
    new_task_queue = [] { return new GrowingPool; };  // the HTTP library's to delete
    set_read_timeout(patience);
    set_write_timeout(patience);
    set_socket_options(&Socket::ClaimPort);
}

LoopbackServer::~LoopbackServer() {
    Stop();
}

void LoopbackServer::Start(const std::string& address, int port) {
    if (port == 0) {
        port = bind_to_any_port(address);
    } else if (!bind_to_port(address, port)) {
        port = -1;
    }
    if (port < 0) {
        throw std::runtime_error("cannot listen on " + address + ": the address or port is not free");
    }
    // The library asks for a queue of five, too few for many clients at once.
    ::listen(svr_sock_, SOMAXCONN);
    ReadFirstRequest();
    boundAddress = address + ":" + std::to_string(port);
    listener = std::thread([this] { listen_after_bind(); });
    // Stopping a server that does not run yet has no effect.
    while (!is_running()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

// The library builds a table when it reads its first request. Let that be here, where no other thread is about: a race
// detector cannot see into the library how its threads agree on who builds it.
void LoopbackServer::ReadFirstRequest() {
    httplib::detail::BufferStream refused;
    refused.httplib::Stream::write("NO / HTTP/1.1\r\n\r\n");
    bool closes = false;
    process_request(refused, true, closes, nullptr);
}

void LoopbackServer::Stop() {
    if (!listener.joinable()) {
        return;
    }
    {
        const std::lock_guard lock(mutex);
        stopping = true;
        stopped.notify_all();
        for (const socket_t sock : open) {
            Socket::ShutDown(sock);
        }
    }
    stop();
    listener.join();
}

bool LoopbackServer::Wait(std::chrono::milliseconds duration) {
    std::unique_lock lock(mutex);
    return !stopped.wait_for(lock, duration, [this] { return stopping; });
}

bool LoopbackServer::HasBody(const httplib::Request& request) {
    return request.has_header("Content-Length") || request.has_header("Transfer-Encoding");
}

std::optional<std::string> LoopbackServer::ReadBody(const httplib::Request& request,
                                                    const httplib::ContentReader& reader) {
    std::string body;
    std::size_t length = 0;
    // Without a length the library would wait for the client to close the connection.
    if (HasBody(request)) {
        reader([&](const char* bytes, std::size_t count) {
            length += count;
            if (length <= longestBody) {
                body.append(bytes, count);
            }
            return true;  // to its end, so that a client who sends too much reads the answer
        });
    }
    return length <= longestBody ? std::optional(std::move(body)) : std::nullopt;
}

bool LoopbackServer::BeforeHandshake(WireStream& /*stream*/) {
    return true;
}

void LoopbackServer::AfterRequest(WireStream& /*stream*/) {}

bool LoopbackServer::process_and_close_socket(socket_t sock) {
    const OpenSocket registered(*this, sock);
    WireStream stream(sock, tlsContext);
    if (!IsStopping() && BeforeHandshake(stream) && stream.Handshake(silence)) {
        stream.SetPatience(patience);
        Serve(stream);
    }
    return true;
}

void LoopbackServer::Serve(WireStream& stream) {
    for (std::size_t left = requestsPerConnection; left > 0 && !IsStopping(); --left) {
        // Once it has been answered an idle client must not keep a thread from the others.
        if (!stream.WaitForRequest(left == requestsPerConnection ? silence : keepAlive)) {
            return;
        }
        stream.BeginRequest();
        bool clientCloses = false;
        const bool answered = process_request(stream, left == 1, clientCloses,
                                              [&](httplib::Request& request) { request.ssl = stream.Tls(); });
        // A request line that the library refuses leaves the headers unread; they must not pass for a request.
        const bool headRead = stream.FinishHead();
        AfterRequest(stream);
        if (!answered || clientCloses || !headRead || !stream.is_writable()) {
            return;
        }
    }
}

bool LoopbackServer::IsStopping() {
    const std::lock_guard lock(mutex);
    return stopping;
}

}  // namespace Korvel::Sim
