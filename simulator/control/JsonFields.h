#pragma once

#include <nlohmann/json.hpp>
#include <stdexcept>

namespace Korvel::Sim {

/// Checks on JSON objects that come from outside.
class JsonFields {
public:
    /// Throws std::invalid_argument when `object` is no object or has a field that `known` has not: a misspelt name
    /// must not pass as one that was left out.
    static void RequireKnown(const nlohmann::json& object, const nlohmann::json& known) {
        if (!object.is_object()) {
            throw std::invalid_argument("expected an object, not " + object.dump());
        }
        for (const auto& field : object.items()) {
            if (!known.contains(field.key())) {
                throw std::invalid_argument("unknown field " + field.key());
            }
        }
    }
};

}  // namespace Korvel::Sim
