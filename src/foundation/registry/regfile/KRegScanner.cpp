#include "foundation/registry/regfile/KRegScanner.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "foundation/registry/regfile/KRegError.h"

namespace Korvel {

namespace {

constexpr std::string_view blanks = " \t";

std::string_view WithoutLeadingBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text;
}

}  // namespace

KRegScanner::KRegScanner(std::string filePath, std::string fileText)
    : path(std::move(filePath)), text(std::move(fileText)), following(text) {}

bool KRegScanner::NextLine() {
    if (following.empty()) {
        return false;
    }
    ++lineNumber;
    rest = following.substr(0, following.find('\n'));
    following.remove_prefix(std::min(rest.size() + 1, following.size()));
    if (rest.ends_with('\r')) {
        rest.remove_suffix(1);
    }
    return true;
}

std::string_view KRegScanner::Rest() {
    rest = WithoutLeadingBlanks(rest);
    return rest;
}

bool KRegScanner::Take(std::string_view word) {
    if (!Rest().starts_with(word)) {
        return false;
    }
    rest.remove_prefix(word.size());
    return true;
}

std::string KRegScanner::TakeKey() {
    for (std::size_t end = rest.find(']'); end != std::string_view::npos; end = rest.find(']', end + 1)) {
        if (OnlyCommentFollows(rest.substr(end + 1))) {
            std::string key(rest.substr(0, end));
            rest.remove_prefix(end + 1);
            return key;
        }
    }
    Fail("key is not closed");
}

std::string KRegScanner::TakeQuoted() {
    std::string result;
    while (!rest.empty()) {
        char character = rest.front();
        rest.remove_prefix(1);
        if (character == '"') {
            return result;
        }
        if (character == '\\') {
            if (!rest.starts_with('\\') && !rest.starts_with('"')) {
                Fail("a backslash in a text is written as two");
            }
            character = rest.front();
            rest.remove_prefix(1);
        }
        result += character;
    }
    Fail("text is not closed");
}

unsigned long KRegScanner::TakeHex(std::size_t mostDigits) {
    const std::string_view digits = Rest().substr(0, rest.find_first_not_of("0123456789abcdefABCDEF"));
    if (digits.empty() || digits.size() > mostDigits) {
        Fail("1 to " + std::to_string(mostDigits) + " hexadecimal digits are expected");
    }
    unsigned long number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
    rest.remove_prefix(digits.size());
    return number;
}

std::vector<unsigned char> KRegScanner::TakeHexBytes() {
    std::vector<unsigned char> bytes;
    if (OnlyCommentFollows(rest)) {
        return bytes;
    }
    do {
        SkipContinuation();
        bytes.push_back(static_cast<unsigned char>(TakeHex(2)));
    } while (Take(","));
    return bytes;
}

void KRegScanner::TakeEnd() {
    if (!OnlyCommentFollows(rest)) {
        Fail("more follows where the line should end");
    }
}

void KRegScanner::Fail(const std::string& fault) const {
    throw KRegError(path, lineNumber, fault);
}

bool KRegScanner::OnlyCommentFollows(std::string_view remainder) const {
    remainder = WithoutLeadingBlanks(remainder);
    return remainder.empty() || remainder.starts_with(';');
}

void KRegScanner::SkipContinuation() {
    if (!Take("\\")) {
        return;
    }
    TakeEnd();
    if (!NextLine()) {
        Fail("the line goes on, but the file ends");
    }
}

}  // namespace Korvel
