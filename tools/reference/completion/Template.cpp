#include "completion/Template.h"

#include <cstddef>

namespace Korvel::Reference {

std::string Filled(std::string text, std::string_view mark, std::string_view value) {
    const std::string wanted = "@" + std::string(mark) + "@";
    for (std::size_t at = text.find(wanted); at != std::string::npos; at = text.find(wanted, at + value.size())) {
        text.replace(at, wanted.size(), value);
    }
    return text;
}

std::string Joined(const std::vector<std::string>& words, std::string_view separator) {
    std::string joined;
    for (const std::string& word : words) {
        joined += (joined.empty() ? "" : std::string(separator)) + word;
    }
    return joined;
}

std::string SingleQuoted(std::string_view text, std::string_view inside) {
    std::string quoted = "'";
    for (const char character : text) {
        quoted += character == '\'' ? std::string(inside) : std::string(1, character);
    }
    return quoted + "'";
}

}  // namespace Korvel::Reference
