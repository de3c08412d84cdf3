#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace Korvel::Sim {

/// Any bytes as a JSON value and back. JSON texts are UTF-8, the bytes on the wire need not be.
class Bytes {
public:
    /// Returns a JSON text when `bytes` are valid UTF-8, otherwise an object {"base64": "..."}.
    static nlohmann::json ToJson(const std::string& bytes);

    /// Returns the bytes behind a value of the form that ToJson gives.
    /// Throws std::invalid_argument when `value` has neither form.
    static std::string FromJson(const nlohmann::json& value);
};

}  // namespace Korvel::Sim
