#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace Korvel::Sim {

/// One way in which an array misbehaves, and for which requests or connections.
struct Fault {
    /// What happens to the request; Connection: what happens before there is one.
    enum class Kind { Status, Delay, Body, Raw, Cut, Drip, Drop, Redirect, Connection };

    /// How a connection ends before its first request.
    enum class Handshake { Closed, Cut, Garbage, Version, Stalled, Reset };

    std::uint64_t id = 0;               ///< number given when it was armed, from 1
    std::optional<std::size_t> array;   ///< only this array
    std::optional<int> port;            ///< only clients that speak from this port
    std::optional<std::string> method;  ///< only this method
    std::optional<std::string> path;    ///< only this path, as it stands on the wire
    std::optional<std::string> glob;    ///< only paths of this shape; "*" stands for anything, slashes included
    std::uint64_t skip = 0;             ///< so many matching requests go unharmed first
    std::uint64_t skipped = 0;          ///< so many went unharmed so far
    std::uint64_t count = 1;            ///< so many requests are hit
    std::uint64_t fired = 0;            ///< so many were hit so far
    std::uint64_t delay = 0;            ///< milliseconds to wait before the answer, with every kind

    Kind kind = Kind::Delay;
    Handshake handshake = Handshake::Closed;
    int status = 200;  ///< HTTP status of the answer (status, body and redirect)
    std::string body;  ///< body of the answer (status, body and redirect); all of the answer (raw)
    std::string contentType = "application/xml";
    std::string location;             ///< where a redirect points
    std::optional<std::size_t> keep;  ///< bytes of the body that get through a cut; half of it if not given
    std::uint64_t hold = 0;           ///< milliseconds of silence before the connection ends (raw, cut, connection)
    std::uint64_t pause = 0;          ///< milliseconds before each piece of a dripping body
    std::size_t step = 1;             ///< bytes of such a piece
    bool reset = false;               ///< whether the connection is reset instead of closed (raw, cut, drop)
    bool execute = false;             ///< whether the request is carried out although its answer is lost

    /// Reads a fault's JSON form. Throws std::invalid_argument or nlohmann's exception when it makes no sense.
    static Fault FromJson(const nlohmann::json& value);

    /// Returns the JSON form together with "id" and "fired".
    nlohmann::json ToJson() const;

    /// Tells whether the fault is meant for connections from this port.
    bool MatchesConnection(std::size_t ofArray, int ofPort) const;

    /// Tells whether the fault is meant for this request.
    bool MatchesRequest(std::size_t ofArray, int ofPort, const std::string& ofMethod,
                        const std::string& ofTarget) const;
};

}  // namespace Korvel::Sim
