#include "wire/Request.h"

#include <strings.h>

#include <algorithm>

namespace Korvel::Sim {
namespace {

std::string Line(const std::string& text, std::size_t& at) {
    const std::size_t end = std::min(text.find("\r\n", at), text.size());
    std::string line = text.substr(at, end - at);
    at = std::min(end + 2, text.size());
    return line;
}

}  // namespace

Request Request::FromHead(const std::string& head) {
    Request request;
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

std::string Request::Header(const std::string& name) const {
    const auto found = std::find_if(headers.begin(), headers.end(), [&](const auto& header) {
        return strcasecmp(header.first.c_str(), name.c_str()) == 0;
    });
    return found == headers.end() ? "" : found->second;
}

}  // namespace Korvel::Sim
