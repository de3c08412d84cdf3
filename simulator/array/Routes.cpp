#include "array/Routes.h"

#include <charconv>
#include <optional>
#include <string>
#include <string_view>

#include "array/Form.h"
#include "array/Outcome.h"
#include "array/Refusal.h"
#include "array/Replies.h"
#include "array/ReplyWriter.h"

namespace Korvel::Sim {
namespace {

struct Call {
    ArrayState& array;
    const std::string& name;  // what stands in the path in place of "*"
    const std::string& body;
};

// One request of the array. The path may hold one "*", which stands for a name of any characters, slashes included.
struct Route {
    std::string_view method;
    std::string_view path;
    const char* element;  // of the reply when the request is refused, and of every command's reply
    Outcome (*command)(const Call&);
    ArrayState::Document (*listing)(const Call&);
};

const Route routes[] = {
    {"GET", "/api/volumes", "show-volumes-response", nullptr, [](const Call& c) { return c.array.Volumes(); }},
    {"GET", "/api/servers", "show-servers-response", nullptr, [](const Call& c) { return c.array.Servers(); }},
    {"GET", "/api/drives", "show-disks-response", nullptr, [](const Call& c) { return c.array.Drives(); }},
    {"GET", "/api/consistency_groups/*/snapshots", "show-snapshots-response", nullptr,
     [](const Call& c) { return c.array.Snapshots(c.name); }},
    {"POST", "/api/snapshots/snapshots_set", "create-snapshot-set-response",
     [](const Call& c) { return c.array.CreateSnapshotSet(Form(c.body)); }, nullptr},
    {"DELETE", "/api/snapshots/*", "delete-snapshot-response",
     [](const Call& c) { return c.array.DeleteSnapshot(c.name); }, nullptr},
    {"POST", "/api/consistency_groups/*/clone", "clone-cg-response",
     [](const Call& c) { return c.array.CloneGroup(c.name, Form(c.body)); }, nullptr},
    {"POST", "/api/consistency_groups/*/rollback", "clone-cg-response",
     [](const Call& c) { return c.array.RollBackGroup(c.name, Form(c.body)); }, nullptr},
    {"DELETE", "/api/volumes/*", "delete-volume-response", [](const Call& c) { return c.array.DeleteVolume(c.name); },
     nullptr},
    {"POST", "/api/servers", "create-server-response", [](const Call& c) { return c.array.CreateServer(Form(c.body)); },
     nullptr},
    {"POST", "/api/servers/*/volumes", "attach-volume-response",
     [](const Call& c) { return c.array.AttachVolume(c.name, Form(c.body)); }, nullptr},
    {"POST", "/api/volumes/*/detach", "detach-volume-response",
     [](const Call& c) { return c.array.DetachVolume(c.name, Form(c.body)); }, nullptr},
};

/// libcurl percent-encodes bytes beyond ASCII in a path, and no others: they alone are decoded.
std::string Decoded(const std::string& target) {
    std::string decoded;
    for (std::size_t at = 0; at < target.size(); ++at) {
        unsigned code = 0;
        const char* const digits = target.data() + at + 1;
        if (target[at] == '%' && target.size() - at > 2 &&
            std::from_chars(digits, digits + 2, code, 16).ptr == digits + 2 && code >= 0x80) {
            decoded += static_cast<char>(code);
            at += 2;
        } else {
            decoded += target[at];
        }
    }
    return decoded;
}

std::optional<std::string> Match(std::string_view path, std::string_view target) {
    const std::size_t star = path.find('*');
    if (star == std::string_view::npos) {
        return path == target ? std::optional<std::string>("") : std::nullopt;
    }
    const std::string_view before = path.substr(0, star);
    const std::string_view after = path.substr(star + 1);
    if (target.size() < path.size() || !target.starts_with(before) || !target.ends_with(after)) {
        return std::nullopt;
    }
    return std::string(target.substr(star, target.size() - before.size() - after.size()));
}

Reply Document(std::string text) {
    return {.body = std::make_shared<const std::string>(std::move(text)), .location = {}};
}

Reply Run(const Route& route, const Call& call) {
    try {
        if (!ReplyWriter::CanHold(call.name)) {
            throw Refusal("The name in the path holds characters that are not allowed");
        }
        return route.listing != nullptr ? Reply{.body = route.listing(call), .location = {}}
                                        : Document(Replies::Done(route.element, route.command(call)));
    } catch (const Refusal& refusal) {
        return Document(Replies::Refused(route.element, refusal.what()));
    }
}

}  // namespace

Reply Routes::Answer(ArrayState& array, const std::string& method, const std::string& target, const std::string& body) {
    bool known = false;
    const std::string path = Decoded(target);
    for (const Route& route : routes) {
        if (const auto name = Match(route.path, path)) {
            known = true;
            if (route.method == method) {
                return Run(route, {array, *name, body});
            }
        }
    }
    return known ? Error(405, "This method is not allowed here") : Error(404, "There is nothing at this path");
}

Reply Routes::Error(int status, const std::string& message) {
    Reply answer = Document(Replies::Refused("error-response", message));
    answer.status = status;
    return answer;
}

}  // namespace Korvel::Sim
