#include "control/Glob.h"

#include <cstddef>

namespace Korvel::Sim {
namespace {

/// Tells whether `character` is one of a bracket's.
bool IsAmong(char character, std::string_view members) {
    const bool others = members.starts_with('!');
    members.remove_prefix(others ? 1 : 0);
    for (std::size_t i = 0; i < members.size(); ++i) {
        const char first = members[i];
        if (i + 2 < members.size() && members[i + 1] == '-') {
            i += 2;
        }
        if (first <= character && character <= members[i]) {
            return !others;
        }
    }
    return others;
}

/// Returns how long the pattern's first element is that stands for one character; 0 when it does not fit `character`.
std::size_t Fitting(char character, std::string_view pattern) {
    // A bracket may hold a closing one in the first place; one that never closes stands for itself.
    const std::size_t first = pattern.starts_with("[!") ? 2 : 1;
    const std::size_t close = pattern.starts_with('[') ? pattern.find(']', first + 1) : std::string_view::npos;
    if (close != std::string_view::npos) {
        return IsAmong(character, pattern.substr(1, close - 1)) ? close + 1 : 0;
    }
    return !pattern.empty() && pattern[0] != '*' && (pattern[0] == '?' || pattern[0] == character) ? 1 : 0;
}

}  // namespace

bool HasShape(std::string_view text, std::string_view pattern) {
    std::string_view afterStar;  // of pattern and text, from where the last star is tried again with one character more
    std::string_view retry;
    bool starred = false;
    while (!text.empty()) {
        if (const std::size_t length = Fitting(text[0], pattern); length > 0) {
            text.remove_prefix(1);
            pattern.remove_prefix(length);
        } else if (pattern.starts_with('*')) {
            starred = true;
            pattern.remove_prefix(1);
            afterStar = pattern;
            retry = text;
        } else if (starred) {
            retry.remove_prefix(1);
            text = retry;
            pattern = afterStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*') == std::string_view::npos;
}

}  // namespace Korvel::Sim
