#include "control/Journal.h"

#include <cstddef>
#include <string>

#include "control/Bytes.h"

namespace Korvel::Sim {
namespace {

constexpr std::size_t mostBytes = std::size_t{256} << 20U;

nlohmann::json ToJson(const Request& request, std::uint64_t sequence) {
    nlohmann::json headers = nlohmann::json::array();
    for (const auto& [name, value] : request.headers) {
        headers.push_back({Bytes::ToJson(name), Bytes::ToJson(value)});
    }
    return {{"sequence", sequence},
            {"array", request.array},
            {"method", Bytes::ToJson(request.method)},
            {"target", Bytes::ToJson(request.target)},
            {"version", Bytes::ToJson(request.version)},
            {"headers", std::move(headers)},
            {"body", Bytes::ToJson(request.body)},
            {"newConnection", request.newConnection},
            {"fault", request.fault == 0 ? nlohmann::json() : nlohmann::json(request.fault)}};
}

std::size_t SizeOf(const Request& request) {
    std::size_t size = sizeof request + request.method.size() + request.target.size() + request.body.size();
    for (const auto& [name, value] : request.headers) {
        size += 2 * sizeof(std::string) + name.size() + value.size();
    }
    return size;
}

}  // namespace

Journal::Journal(std::size_t capacity) : limit(capacity) {}

void Journal::Add(Request request) {
    const std::lock_guard lock(mutex);
    bytes += SizeOf(request);
    requests.push_back(std::move(request));
    while (requests.size() > limit || (bytes > mostBytes && requests.size() > 1)) {
        bytes -= SizeOf(requests.front());
        requests.pop_front();
        ++forgotten;
    }
}

nlohmann::json Journal::ToJson(std::uint64_t from) const {
    const std::lock_guard lock(mutex);
    nlohmann::json entries = nlohmann::json::array();
    std::uint64_t sequence = forgotten;
    for (const auto& request : requests) {
        if (++sequence >= from) {
            entries.push_back(Sim::ToJson(request, sequence));
        }
    }
    return {{"entries", std::move(entries)}, {"forgotten", forgotten}};
}

void Journal::Clear() {
    const std::lock_guard lock(mutex);
    requests.clear();
    bytes = 0;
    forgotten = 0;
}

}  // namespace Korvel::Sim
