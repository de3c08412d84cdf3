#pragma once

#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>

#include "wire/WireStream.h"

namespace Korvel::Sim {

/// An HTTP or HTTPS server on loopback that stops at once, whatever its clients do. The HTTP library reads requests and
/// writes replies; this class owns the connections underneath.
class LoopbackServer : protected httplib::Server {
public:
    /// `tls` is the context to speak TLS with, null for plain HTTP; it has to outlive the server.
    explicit LoopbackServer(SSL_CTX* tls);

    ~LoopbackServer() override;

    /// Binds to `address` and `port` (0: any free one) and begins to serve. Throws std::runtime_error when it cannot.
    void Start(const std::string& address, int port);

    /// Ends every connection and waits for the threads. A derived class calls it in its own destructor, since the
    /// threads use what it owns. Harmless when called twice.
    void Stop();

    /// Returns "address:port" once it has been started.
    const std::string& Address() const { return boundAddress; }

protected:
    /// Waits for `duration`. Returns false when the server is stopped meanwhile.
    bool Wait(std::chrono::milliseconds duration);

    /// Tells whether `request` comes with a body, if only an empty one.
    static bool HasBody(const httplib::Request& request);

    /// Returns the body of `request`, read through `reader`; nothing when it is longer than anything makes sense.
    static std::optional<std::string> ReadBody(const httplib::Request& request, const httplib::ContentReader& reader);

    /// Called when a client has connected, before the TLS handshake. Returns false when the connection is to end.
    virtual bool BeforeHandshake(WireStream& stream);

    /// Called after each request, answered or not, while its connection is still there.
    virtual void AfterRequest(WireStream& stream);

private:
    class OpenSocket;

    bool process_and_close_socket(socket_t sock) override;
    void ReadFirstRequest();
    void Serve(WireStream& stream);
    bool IsStopping();

    SSL_CTX* tlsContext;
    std::string boundAddress;
    std::thread listener;
    std::mutex mutex;
    std::condition_variable stopped;
    bool stopping = false;
    std::set<socket_t> open;
};

}  // namespace Korvel::Sim
