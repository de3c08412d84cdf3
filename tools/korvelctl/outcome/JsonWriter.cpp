#include "outcome/JsonWriter.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <nlohmann/json.hpp>

#include "outcome/ExitMeaning.h"
#include "outcome/ExitStatus.h"
#include "outcome/Problem.h"

namespace Korvel::Ctl {
namespace {

/// ASCII alone, so that nothing in it steers a terminal. A text that is not UTF-8 must not cost the script the rest.
std::string Written(const nlohmann::ordered_json& value) {
    return value.dump(-1, ' ', true, nlohmann::ordered_json::error_handler_t::replace);
}

const char* KindOf(const Problem& problem) {
    return std::find_if(std::begin(ExitMeanings), std::end(ExitMeanings),
                        [&problem](const ExitMeaning& meaning) { return meaning.status == problem.status; })
        ->problemKind;
}

}  // namespace

void JsonWriter::Begin(const std::vector<Column>& columns, const std::string& /*sentence*/,
                       const std::vector<std::vector<std::string>>& /*firstRows*/) {
    for (const Column& column : columns) {
        keys.push_back(column.key);
    }
    output << "{\"results\": [";
}

void JsonWriter::Element(const std::string& element) {
    output << (first ? "\n  " : ",\n  ") << element;
    first = false;
}

void JsonWriter::EndList() {
    output << (first ? "]" : "\n]");
    first = true;
}

void JsonWriter::Row(const std::vector<std::string>& cells) {
    auto object = nlohmann::ordered_json::object();
    for (std::size_t i = 0; i < cells.size(); ++i) {
        object[keys[i]] = cells[i];
    }
    Element(Written(object));
}

void JsonWriter::End(const std::vector<Problem>& problems, ExitStatus status) {
    EndList();
    output << ", \"problems\": [";
    for (const Problem& problem : problems) {
        nlohmann::ordered_json array;  // null for a problem of no array
        if (!problem.array.empty()) {
            array = problem.array;
        }
        Element(Written({{"array", array}, {"text", problem.text}, {"kind", KindOf(problem)}}));
    }
    EndList();
    output << ", \"status\": " << status << "}\n";
}

}  // namespace Korvel::Ctl
