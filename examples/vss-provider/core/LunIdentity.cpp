#include "core/LunIdentity.h"

#include <stdexcept>

namespace VssExample {

namespace {

constexpr int binaryCodeSet = 1;
constexpr int naaType = 3;
constexpr const char* digits = "0123456789abcdef";

int DigitValue(char digit) {
    const std::string all(digits);
    const std::size_t value = all.find(digit >= 'A' && digit <= 'F' ? static_cast<char>(digit - 'A' + 'a') : digit);
    return value == std::string::npos ? -1 : static_cast<int>(value);
}

std::string HexOfBytes(const std::string& bytes) {
    std::string hex;
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        hex += digits[code >> 4U];
        hex += digits[code & 0xfU];
    }
    return hex;
}

/// The digits of a text, in lower case; empty if it holds anything else.
std::string HexOfText(const std::string& text) {
    std::string hex;
    for (const char digit : text) {
        const int value = DigitValue(digit);
        if (value < 0) {
            return "";
        }
        hex += digits[value];
    }
    return hex;
}

}  // namespace

std::string IeeeIdentifierOf(const std::vector<StorageIdentifier>& identifiers) {
    for (const StorageIdentifier& identifier : identifiers) {
        if (identifier.type != naaType) {
            continue;
        }
        std::string hex =
            identifier.codeSet == binaryCodeSet ? HexOfBytes(identifier.bytes) : HexOfText(identifier.bytes);
        if (!hex.empty()) {
            return hex;
        }
    }
    return "";
}

StorageIdentifier NaaIdentifier(const std::string& ieeeIdentifier) {
    const std::string hex = HexOfText(ieeeIdentifier);
    if (hex.empty() || hex.size() % 2 != 0) {
        throw std::invalid_argument("'" + ieeeIdentifier + "' is no NAA identifier");
    }
    StorageIdentifier identifier{binaryCodeSet, naaType, ""};
    for (std::size_t at = 0; at < hex.size(); at += 2) {
        identifier.bytes += static_cast<char>(DigitValue(hex[at]) * 16 + DigitValue(hex[at + 1]));
    }
    return identifier;
}

}  // namespace VssExample
