#include "control/Bytes.h"

#include <openssl/evp.h>

#include <stdexcept>

namespace Korvel::Sim {
namespace {

bool IsUtf8(const std::string& bytes) {
    try {
        static_cast<void>(nlohmann::json(bytes).dump());
        return true;
    } catch (const nlohmann::json::type_error&) {
        return false;
    }
}

std::string Encode(const std::string& bytes) {
    std::string text(4 * ((bytes.size() + 2) / 3) + 1, '\0');
    const int length =
        EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                        reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::string Decode(const std::string& text) {
    // The decoder would skip blanks around the text, and what is said below of its end would not hold.
    constexpr const char* alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";
    if (text.find_first_not_of(alphabet) != std::string::npos) {
        throw std::invalid_argument("not a base64 text");
    }
    std::string bytes(3 * (text.size() / 4) + 3, '\0');
    const int length =
        EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
                        reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
    if (length < 0) {
        throw std::invalid_argument("not a base64 text");
    }
    // The decoder counts the padding as bytes of zero.
    const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with("=") ? 1 : 0;
    bytes.resize(static_cast<std::size_t>(length) - padding);
    return bytes;
}

}  // namespace

nlohmann::json Bytes::ToJson(const std::string& bytes) {
    return IsUtf8(bytes) ? nlohmann::json(bytes) : nlohmann::json{{"base64", Encode(bytes)}};
}

std::string Bytes::FromJson(const nlohmann::json& value) {
    if (value.is_string()) {
        return value.get<std::string>();
    }
    if (value.is_object() && value.size() == 1 && value.contains("base64") && value["base64"].is_string()) {
        return Decode(value["base64"].get<std::string>());
    }
    throw std::invalid_argument(R"(expected a text or {"base64": "..."})");
}

}  // namespace Korvel::Sim
