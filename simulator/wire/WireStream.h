#pragma once

#include <httplib.h>

#include <chrono>
#include <memory>
#include <string>

namespace Korvel::Sim {

/// One connection as the HTTP library reads and writes it, with or without TLS. Keeps the head of the request as it
/// stood on the wire and can drop the connection in the middle of a reply. Does not own the socket.
class WireStream : public httplib::Stream {
public:
    /// Wraps the connected `socket`; `tls` is the context to speak TLS with, null for plain text.
    WireStream(socket_t socket, SSL_CTX* tls);

    ~WireStream() override;
    WireStream(const WireStream&) = delete;
    WireStream& operator=(const WireStream&) = delete;

    /// Returns the stream that the TLS session of a request belongs to.
    static WireStream& Of(const httplib::Request& request);

    /// Does the server's side of the TLS handshake; plain text needs none. Returns false when it fails, or when the
    /// client is silent for longer than `patience`.
    bool Handshake(std::chrono::seconds patience);

    /// Lets reading and writing fail when the client does nothing for longer than `patience`.
    void SetPatience(std::chrono::seconds patience) const;

    /// Waits until the next request begins or the connection ends. Returns false when neither happens in `patience`.
    bool WaitForRequest(std::chrono::seconds patience) const;

    /// Forgets the last request.
    void BeginRequest();

    /// Reads the head to its end if that has not been done. Returns whether it had been.
    bool FinishHead();

    /// Returns the request line and headers received since BeginRequest.
    const std::string& Head() const { return head; }

    /// Tells whether the current request is the connection's first.
    bool IsFirstRequest() const { return requests == 1; }

    /// Marks the current request as one that has been entered in the journal.
    void Note() { noted = true; }

    /// Tells whether the current request has been marked by Note.
    bool IsNoted() const { return noted; }

    /// From now on nothing is written any more, so that the client sees the connection end.
    void Drop() { dropped = true; }

    /// As Drop, and the connection's end is a reset.
    void Reset();

    /// Waits for the client's first bytes and takes them away, before any handshake.
    void SwallowHello() const;

    /// Sends bytes as they are, past any TLS session.
    void SendUnsealed(const std::string& bytes) const;

    /// Returns the port that the client speaks from.
    int ClientPort() const;

    /// The TLS session, null for plain text.
    SSL* Tls() const { return session.get(); }

    bool is_readable() const override { return !dropped; }
    bool is_writable() const override { return !dropped; }
    ssize_t read(char* ptr, size_t size) override;
    ssize_t write(const char* ptr, size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override { return descriptor; }

private:
    void KeepHead(const char* bytes, std::size_t count);

    socket_t descriptor;
    std::unique_ptr<SSL, void (*)(SSL*)> session;
    std::string head;
    bool headComplete = false;
    bool noted = false;
    bool broken = false;
    bool dropped = false;
    int requests = 0;
};

}  // namespace Korvel::Sim
