#include "control/JsonFields.h"

#include <stdexcept>

namespace Korvel::Sim {

nlohmann::json JsonFields::Parse(const std::string& text) {
    constexpr int deepest = 32;
    return nlohmann::json::parse(text,
                                 [](int depth, nlohmann::json::parse_event_t /*event*/, nlohmann::json& /*value*/) {
                                     if (depth > deepest) {
                                         throw std::invalid_argument("the JSON text is nested too deep");
                                     }
                                     return true;
                                 });
}

void JsonFields::RequireKnown(const nlohmann::json& object, const nlohmann::json& known) {
    if (!object.is_object()) {
        throw std::invalid_argument("expected an object, not " + object.dump());
    }
    for (const auto& field : object.items()) {
        if (!known.contains(field.key())) {
            throw std::invalid_argument("unknown field " + field.key());
        }
    }
}

void JsonFields::RequireLike(const nlohmann::json& object, const nlohmann::json& example) {
    RequireKnown(object, example);
    for (const auto& field : object.items()) {
        const std::string type = example[field.key()].type_name();
        if (field.value().type_name() != type) {
            throw std::invalid_argument(field.key() + " must be of the type " + type + ", not " +
                                        field.value().type_name());
        }
    }
}

std::uint64_t JsonFields::Number(const nlohmann::json& object, const char* name, std::uint64_t otherwise,
                                 std::uint64_t least, std::uint64_t most) {
    const auto field = object.find(name);
    if (field == object.end()) {
        return otherwise;
    }
    const std::uint64_t number = field->is_number_unsigned() ? field->get<std::uint64_t>() : least;
    if (!field->is_number_unsigned() || number < least || number > most) {
        const bool bounded = most != std::numeric_limits<std::uint64_t>::max();
        throw std::invalid_argument(std::string(name) + " must be a whole number, at least " + std::to_string(least) +
                                    (bounded ? " and at most " + std::to_string(most) : ""));
    }
    return number;
}

}  // namespace Korvel::Sim
