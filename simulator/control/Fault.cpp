#include "control/Fault.h"

#include <algorithm>
#include <cctype>
#include <initializer_list>
#include <stdexcept>

#include "control/Bytes.h"
#include "control/Glob.h"
#include "control/JsonFields.h"

namespace Korvel::Sim {
namespace {

constexpr std::uint64_t longestWait = 3600000;
constexpr std::uint64_t highestPort = 65535;

// A kind, the fields it knows besides those that all kinds have, and those of them that it cannot do without.
struct KindRow {
    Fault::Kind kind;
    const char* name;
    std::initializer_list<const char*> needed;
    std::initializer_list<const char*> optional;
};

const KindRow kinds[] = {
    {Fault::Kind::Status, "status", {"status"}, {"body", "contentType", "execute"}},
    {Fault::Kind::Delay, "delay", {"delay"}, {}},
    {Fault::Kind::Body, "body", {"body"}, {"contentType", "execute"}},
    {Fault::Kind::Raw, "raw", {"body"}, {"execute", "hold", "reset"}},
    {Fault::Kind::Cut, "cut", {}, {"keep", "hold", "reset"}},
    {Fault::Kind::Drip, "drip", {"pause"}, {"step"}},
    {Fault::Kind::Drop, "drop", {}, {"execute", "reset"}},
    {Fault::Kind::Redirect, "redirect", {"location"}, {"status", "execute"}},
    {Fault::Kind::Connection, "connection", {"handshake"}, {"hold"}},
};

struct HandshakeRow {
    Fault::Handshake handshake;
    const char* name;
};

const HandshakeRow handshakes[] = {
    {Fault::Handshake::Closed, "closed"},   {Fault::Handshake::Cut, "cut"},
    {Fault::Handshake::Garbage, "garbage"}, {Fault::Handshake::Version, "version"},
    {Fault::Handshake::Stalled, "stalled"}, {Fault::Handshake::Reset, "reset"},
};

void Require(bool condition, const std::string& otherwise) {
    if (!condition) {
        throw std::invalid_argument(otherwise);
    }
}

// The row whose name the field holds; an error that lists all names if there is none.
template <typename Rows>
const auto& RowOf(const Rows& rows, const nlohmann::json& value, const char* field) {
    std::string names;
    for (const auto& row : rows) {
        if (value.contains(field) && value[field] == row.name) {
            return row;
        }
        names += std::string(names.empty() ? "" : ", ") + row.name;
    }
    throw std::invalid_argument(std::string(field) + " must be one of " + names);
}

std::optional<std::string> Text(const nlohmann::json& value, const char* field) {
    if (!value.contains(field)) {
        return std::nullopt;
    }
    Require(value[field].is_string(), std::string(field) + " must be a text");
    return value[field].get<std::string>();
}

bool Flag(const nlohmann::json& value, const char* field) {
    Require(!value.contains(field) || value[field].is_boolean(), std::string(field) + " must be true or false");
    return value.value(field, false);
}

// All that only some kinds have.
void ReadKind(Fault& fault, const nlohmann::json& value) {
    fault.delay = JsonFields::Number(value, "delay", 0, 0, longestWait);
    fault.status = static_cast<int>(
        JsonFields::Number(value, "status", fault.kind == Fault::Kind::Redirect ? 302 : 200, 200, 599));
    fault.body = value.contains("body") ? Bytes::FromJson(value["body"]) : "";
    fault.contentType = Text(value, "contentType").value_or(fault.contentType);
    fault.location = Text(value, "location").value_or("");
    if (value.contains("keep")) {
        fault.keep = JsonFields::Number(value, "keep", 0);
    }
    fault.hold = JsonFields::Number(value, "hold", 0, 0, longestWait);
    fault.pause = JsonFields::Number(value, "pause", 0, 0, longestWait);
    fault.step = JsonFields::Number(value, "step", 1, 1);
    fault.reset = Flag(value, "reset");
    fault.execute = Flag(value, "execute");
    if (fault.kind == Fault::Kind::Connection) {
        fault.handshake = RowOf(handshakes, value, "handshake").handshake;
    }
    Require(fault.kind != Fault::Kind::Delay || fault.delay > 0, "delay must be at least 1");
}

// What the fault is meant for, and how often.
void ReadTarget(Fault& fault, const nlohmann::json& value) {
    if (value.contains("array")) {
        fault.array = JsonFields::Number(value, "array", 0);
    }
    if (value.contains("port")) {
        fault.port = static_cast<int>(JsonFields::Number(value, "port", 0, 1, highestPort));
    }
    fault.method = Text(value, "method");
    Require(!fault.method || std::none_of(fault.method->begin(), fault.method->end(),
                                          [](unsigned char letter) { return std::islower(letter) != 0; }),
            "method must be in capitals, as it stands on the wire");
    fault.path = value.contains("path") ? std::optional(Bytes::FromJson(value["path"])) : std::nullopt;
    fault.glob = Text(value, "glob");
    Require(!fault.path || !fault.glob, "path and glob must not be given both");
    fault.skip = JsonFields::Number(value, "skip", 0);
    fault.count = JsonFields::Number(value, "count", 1, 1);
}

}  // namespace

Fault Fault::FromJson(const nlohmann::json& value) {
    Require(value.is_object(), "a fault is an object");
    const KindRow& row = RowOf(kinds, value, "kind");
    nlohmann::json known = {{"kind", 0}, {"array", 0}, {"port", 0}, {"skip", 0}, {"count", 0}};
    if (row.kind != Kind::Connection) {
        known.update({{"method", 0}, {"path", 0}, {"glob", 0}, {"delay", 0}});
    }
    for (const char* name : row.needed) {
        known[name] = 0;
        Require(value.contains(name), std::string("the kind ") + row.name + " needs the field " + name);
    }
    for (const char* name : row.optional) {
        known[name] = 0;
    }
    JsonFields::RequireKnown(value, known);
    Fault fault;
    fault.kind = row.kind;
    ReadTarget(fault, value);
    ReadKind(fault, value);
    return fault;
}

nlohmann::json Fault::ToJson() const {
    const auto* const row =
        std::find_if(std::begin(kinds), std::end(kinds), [&](const auto& of) { return of.kind == kind; });
    nlohmann::json value = {{"id", id}, {"fired", fired}, {"kind", row->name}, {"skip", skip}, {"count", count}};
    const auto add = [&](const char* name, bool given, const nlohmann::json& field) {
        if (given) {
            value[name] = field;
        }
    };
    add("array", array.has_value(), array.value_or(0));
    add("port", port.has_value(), port.value_or(0));
    add("method", method.has_value(), method.value_or(""));
    add("path", path.has_value(), Bytes::ToJson(path.value_or("")));
    add("glob", glob.has_value(), glob.value_or(""));
    add("keep", keep.has_value(), keep.value_or(0));
    add("delay", delay > 0, delay);
    add("hold", hold > 0, hold);
    add("status", kind == Kind::Status || kind == Kind::Redirect, status);
    add("body", !body.empty(), Bytes::ToJson(body));
    add("location", !location.empty(), location);
    add("pause", kind == Kind::Drip, pause);
    add("step", kind == Kind::Drip, step);
    add("reset", reset, true);
    add("execute", execute, true);
    add("handshake", kind == Kind::Connection, handshakes[static_cast<std::size_t>(handshake)].name);
    return value;
}

bool Fault::MatchesConnection(std::size_t ofArray, int ofPort) const {
    return kind == Kind::Connection && (!array || *array == ofArray) && (!port || *port == ofPort);
}

bool Fault::MatchesRequest(std::size_t ofArray, int ofPort, const std::string& ofMethod,
                           const std::string& ofTarget) const {
    return kind != Kind::Connection && (!array || *array == ofArray) && (!port || *port == ofPort) &&
           (!method || *method == ofMethod) && (!path || *path == ofTarget) && (!glob || HasShape(ofTarget, *glob));
}

}  // namespace Korvel::Sim
