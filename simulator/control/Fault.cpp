#include "control/Fault.h"

#include <fnmatch.h>

#include <stdexcept>

#include "control/Bytes.h"
#include "control/JsonFields.h"

namespace Korvel::Sim {

NLOHMANN_JSON_SERIALIZE_ENUM(Fault::Kind, {{Fault::Kind::Delay, nullptr},
                                           {Fault::Kind::Status, "status"},
                                           {Fault::Kind::Delay, "delay"},
                                           {Fault::Kind::Body, "body"},
                                           {Fault::Kind::Cut, "cut"},
                                           {Fault::Kind::Drop, "drop"},
                                           {Fault::Kind::Redirect, "redirect"}})

namespace {

constexpr std::int64_t longestDelay = 3600000;

template <typename Value>
std::optional<Value> Optional(const nlohmann::json& value, const char* name) {
    const auto field = value.find(name);
    return field == value.end() ? std::nullopt : std::optional<Value>(field->get<Value>());
}

std::uint64_t Count(const nlohmann::json& value, const char* name, std::uint64_t otherwise) {
    const auto field = value.find(name);
    if (field == value.end()) {
        return otherwise;
    }
    if (!field->is_number_unsigned()) {
        throw std::invalid_argument(std::string(name) + " must be a whole number and not negative");
    }
    return field->get<std::uint64_t>();
}

void Require(bool condition, const char* otherwise) {
    if (!condition) {
        throw std::invalid_argument(otherwise);
    }
}

// Which fields a kind knows, besides those that all kinds have.
nlohmann::json KnownFields(Fault::Kind kind) {
    nlohmann::json known = {{"array", 0}, {"method", 0}, {"path", 0},  {"glob", 0},
                            {"skip", 0},  {"count", 0},  {"delay", 0}, {"kind", 0}};
    const auto allow = [&](std::initializer_list<const char*> names) {
        for (const char* name : names) {
            known[name] = 0;
        }
    };
    switch (kind) {
        case Fault::Kind::Status:
            allow({"status", "body", "contentType", "execute"});
            break;
        case Fault::Kind::Body:
            allow({"body", "contentType", "execute"});
            break;
        case Fault::Kind::Cut:
            allow({"keep"});
            break;
        case Fault::Kind::Drop:
            allow({"execute"});
            break;
        case Fault::Kind::Redirect:
            allow({"status", "location", "execute"});
            break;
        case Fault::Kind::Delay:
            break;
    }
    return known;
}

}  // namespace

Fault Fault::FromJson(const nlohmann::json& value) {
    Require(value.is_object() && value.contains("kind"), "a fault is an object with a field kind");
    Fault fault;
    fault.kind = value["kind"].get<Kind>();
    Require(nlohmann::json(fault.kind) == value["kind"] || value["kind"] == "delay",
            "kind must be status, delay, body, cut, drop or redirect");
    JsonFields::RequireKnown(value, KnownFields(fault.kind));
    fault.array = Optional<std::size_t>(value, "array");
    fault.method = Optional<std::string>(value, "method");
    fault.path = value.contains("path") ? std::optional(Bytes::FromJson(value["path"])) : std::nullopt;
    fault.glob = Optional<std::string>(value, "glob");
    Require(!fault.path || !fault.glob, "give path or glob, not both");
    fault.skip = Count(value, "skip", 0);
    fault.count = Count(value, "count", 1);
    Require(fault.count > 0, "count must be at least 1");
    fault.delay = static_cast<std::int64_t>(Count(value, "delay", 0));
    Require(fault.delay <= longestDelay, "delay is given in milliseconds, at most one hour");
    Require(fault.kind != Kind::Delay || fault.delay > 0, "a delay needs the field delay");
    Require(fault.kind != Kind::Status || value.contains("status"), "a status needs the field status");
    fault.status = value.value("status", fault.kind == Kind::Redirect ? 302 : 200);
    Require(fault.status >= 200 && fault.status <= 599, "status must be between 200 and 599");
    Require(fault.kind != Kind::Body || value.contains("body"), "a body needs the field body");
    fault.body = value.contains("body") ? Bytes::FromJson(value["body"]) : "";
    fault.contentType = value.value("contentType", fault.contentType);
    Require(fault.kind != Kind::Redirect || value.contains("location"), "a redirect needs the field location");
    fault.location = value.value("location", "");
    fault.keep = value.contains("keep") ? std::optional<std::size_t>(Count(value, "keep", 0)) : std::nullopt;
    fault.execute = value.value("execute", false);
    return fault;
}

nlohmann::json Fault::ToJson() const {
    nlohmann::json value = {{"id", id}, {"fired", fired}, {"kind", kind}, {"skip", skip}, {"count", count}};
    const auto add = [&](const char* name, const auto& field) {
        if (field) {
            value[name] = *field;
        }
    };
    add("array", array);
    add("method", method);
    add("glob", glob);
    add("keep", keep);
    if (path) {
        value["path"] = Bytes::ToJson(*path);
    }
    if (delay > 0) {
        value["delay"] = delay;
    }
    if (kind == Kind::Status || kind == Kind::Redirect) {
        value["status"] = status;
    }
    if (!body.empty()) {
        value["body"] = Bytes::ToJson(body);
    }
    if (!location.empty()) {
        value["location"] = location;
    }
    if (execute) {
        value["execute"] = true;
    }
    return value;
}

bool Fault::Matches(std::size_t ofArray, const std::string& ofMethod, const std::string& ofTarget) const {
    return (!array || *array == ofArray) && (!method || *method == ofMethod) && (!path || *path == ofTarget) &&
           (!glob || fnmatch(glob->c_str(), ofTarget.c_str(), 0) == 0);
}

}  // namespace Korvel::Sim
