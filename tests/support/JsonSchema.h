#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace Korvel::Testing {

/// @param document what is to be judged
/// @param schemaPath the file of the JSON schema
/// @return where and how the document breaks the schema, one line each; empty when it fits
std::string SchemaFaults(const nlohmann::json& document, const std::string& schemaPath);

}  // namespace Korvel::Testing
