#include "outcome/JsonWriter.h"

#include <cstddef>
#include <nlohmann/json.hpp>

#include "outcome/ExitStatus.h"
#include "outcome/Problem.h"

namespace Korvel::Ctl {

void JsonWriter::Begin(const std::vector<Column>& columns, const std::string& /*sentence*/,
                       const std::vector<std::vector<std::string>>& /*firstRows*/) {
    for (const Column& column : columns) {
        keys.push_back(column.key);
    }
    output << '[';
}

void JsonWriter::Row(const std::vector<std::string>& cells) {
    auto object = nlohmann::ordered_json::object();
    for (std::size_t i = 0; i < cells.size(); ++i) {
        object[keys[i]] = cells[i];
    }
    // An array's text that is not UTF-8 must not cost the script the rest of the list.
    output << (first ? "\n  " : ",\n  ")
           << object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    first = false;
}

void JsonWriter::End(const std::vector<Problem>& /*problems*/, ExitStatus /*status*/) {
    output << (first ? "]\n" : "\n]\n");
}

}  // namespace Korvel::Ctl
