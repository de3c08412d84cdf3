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

/// A text as Written() writes it, faster when nothing in it has to be escaped, as in nearly every text of a long list.
std::string Quoted(const std::string& text) {
    const auto isPlain = [](char byte) { return byte >= 0x20 && byte < 0x7F && byte != '"' && byte != '\\'; };
    return std::all_of(text.begin(), text.end(), isPlain) ? '"' + text + '"' : Written(text);
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
        beginnings.push_back((beginnings.empty() ? "{" : ",") + Quoted(column.key) + ":");
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
    std::string object;
    object.reserve(UsualLength);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        object.append(beginnings[i]).append(Quoted(cells[i]));
    }
    Element(object.append("}"));
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
