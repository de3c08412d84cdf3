#include "support/JsonSchema.h"

#include <fstream>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

namespace Korvel::Testing {

std::string SchemaFaults(const nlohmann::json& document, const std::string& schemaPath) {
    using valijson::adapters::NlohmannJsonAdapter;
    const auto text = nlohmann::json::parse(std::ifstream(schemaPath));
    valijson::Schema schema;
    valijson::SchemaParser().populateSchema(NlohmannJsonAdapter(text), schema);
    valijson::ValidationResults results;
    valijson::Validator().validate(schema, NlohmannJsonAdapter(document), &results);
    std::string faults;
    for (valijson::ValidationResults::Error error; results.popError(error);) {
        for (const std::string& step : error.context) {
            faults += step;
        }
        faults += ": " + error.description + "\n";
    }
    return faults;
}

}  // namespace Korvel::Testing
