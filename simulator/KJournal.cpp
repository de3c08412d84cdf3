#include "KJournal.h"

#include <strings.h>

#include <algorithm>

#include "KBytes.h"

namespace Korvel {
namespace {

std::string Line(const std::string& text, std::size_t& at) {
    const std::size_t end = std::min(text.find("\r\n", at), text.size());
    std::string line = text.substr(at, end - at);
    at = std::min(end + 2, text.size());
    return line;
}

nlohmann::json ToJson(const KRequest& request, std::uint64_t sequence) {
    nlohmann::json headers = nlohmann::json::array();
    for (const auto& [name, value] : request.headers) {
        headers.push_back({KBytes::ToJson(name), KBytes::ToJson(value)});
    }
    return {{"sequence", sequence},
            {"array", request.array},
            {"method", KBytes::ToJson(request.method)},
            {"target", KBytes::ToJson(request.target)},
            {"version", KBytes::ToJson(request.version)},
            {"headers", std::move(headers)},
            {"body", KBytes::ToJson(request.body)},
            {"newConnection", request.newConnection},
            {"fault", request.fault == 0 ? nlohmann::json() : nlohmann::json(request.fault)}};
}

}  // namespace

KRequest KRequest::FromHead(const std::string& head) {
    KRequest request;
    std::size_t at = 0;
    const std::string line = Line(head, at);
    const std::size_t first = std::min(line.find(' '), line.size());
    const std::size_t last = std::max(line.rfind(' ') == std::string::npos ? line.size() : line.rfind(' '), first);
    request.method = line.substr(0, first);
    request.target = last > first ? line.substr(first + 1, last - first - 1) : "";
    request.version = last < line.size() ? line.substr(last + 1) : "";
    while (at < head.size()) {
        const std::string header = Line(head, at);
        const std::size_t colon = std::min(header.find(':'), header.size());
        const std::size_t value = header.find_first_not_of(" \t", colon + (colon < header.size() ? 1 : 0));
        request.headers.emplace_back(header.substr(0, colon), value == std::string::npos ? "" : header.substr(value));
    }
    return request;
}

std::string KRequest::Header(const std::string& name) const {
    const auto found = std::find_if(headers.begin(), headers.end(), [&](const auto& header) {
        return strcasecmp(header.first.c_str(), name.c_str()) == 0;
    });
    return found == headers.end() ? "" : found->second;
}

KJournal::KJournal(std::size_t capacity) : limit(capacity) {}

void KJournal::Add(KRequest request) {
    const std::lock_guard lock(mutex);
    requests.push_back(std::move(request));
    if (requests.size() > limit) {
        requests.pop_front();
        ++forgotten;
    }
}

nlohmann::json KJournal::ToJson(std::uint64_t from) const {
    const std::lock_guard lock(mutex);
    nlohmann::json entries = nlohmann::json::array();
    std::uint64_t sequence = forgotten;
    for (const auto& request : requests) {
        if (++sequence >= from) {
            entries.push_back(Korvel::ToJson(request, sequence));
        }
    }
    return {{"entries", std::move(entries)}, {"forgotten", forgotten}};
}

void KJournal::Clear() {
    const std::lock_guard lock(mutex);
    requests.clear();
    forgotten = 0;
}

}  // namespace Korvel
