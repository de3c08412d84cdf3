#pragma once

#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>

namespace Korvel::Sim {

/// Checks on JSON that comes from outside. What is wrong throws std::invalid_argument, which names the field.
class JsonFields {
public:
    /// Reads a text. It may be nested only as deep as anything here is, since values are walked by recursion.
    static nlohmann::json Parse(const std::string& text);

    /// Refuses what is no object or has a field that `known` has not: a misspelt name must not pass as one that was
    /// left out.
    static void RequireKnown(const nlohmann::json& object, const nlohmann::json& known);

    /// Refuses what is no object, and a field that `example` has not or has with another type.
    static void RequireLike(const nlohmann::json& object, const nlohmann::json& example);

    /// Returns the whole number in the field `name` of `object`, or `otherwise` when there is no such field.
    static std::uint64_t Number(const nlohmann::json& object, const char* name, std::uint64_t otherwise,
                                std::uint64_t least = 0,
                                std::uint64_t most = std::numeric_limits<std::uint64_t>::max());
};

}  // namespace Korvel::Sim
