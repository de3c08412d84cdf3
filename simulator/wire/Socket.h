#pragma once

#include <httplib.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

/// What systems call by other names, or do in other ways, with a socket. None of these takes or keeps ownership.
namespace Korvel::Sim::Socket {

/// Closes the socket and gives its number back.
void Close(socket_t socket);

/// Ends what any thread reads or writes on the socket.
void ShutDown(socket_t socket);

/// Lets no other process share the port that the socket is about to be bound to; connections that a server before it
/// has left behind do not stand in the way.
void ClaimPort(socket_t socket);

/// Lets reading and writing fail when the other side does nothing for longer than `patience`.
void LimitWaiting(socket_t socket, std::chrono::seconds patience);

/// Waits until there is something to read, the end of the connection included. Returns false when neither comes in
/// `patience`.
bool WaitForBytes(socket_t socket, std::chrono::seconds patience);

/// Receives bytes. Returns how many were there, 0 at the end, or -1.
ssize_t ReceiveBytes(socket_t socket, char* bytes, int count);

/// Sends bytes; a connection that has ended is an error and no signal. Returns how many were sent, or -1.
ssize_t SendBytes(socket_t socket, const char* bytes, int count);

/// Returns an IPv4 address in its dotted form as a number; nothing when it is none.
std::optional<std::uint32_t> ParseAddress(const std::string& text);

}  // namespace Korvel::Sim::Socket
