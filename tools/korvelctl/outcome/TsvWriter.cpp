#include "outcome/TsvWriter.h"

#include <algorithm>
#include <string_view>

#include "text/Printable.h"

namespace Korvel::Ctl {
namespace {

/// Doubles backslashes, so that what Printable and this write with one can be told from what was there.
std::string Escaped(std::string_view text) {
    constexpr std::string_view special = "\\\t\n\r";
    constexpr std::string_view letters = "\\tnr";
    if (std::none_of(text.begin(), text.end(), [](char character) { return character < ' ' || character == '\\'; })) {
        return Printable(text);  // as nearly every text of a long list
    }
    std::string escaped;
    for (const char character : text) {
        const std::size_t which = special.find(character);
        if (which == std::string_view::npos) {
            escaped += character;
        } else {
            escaped += {'\\', letters[which]};
        }
    }
    return Printable(escaped);
}

}  // namespace

void TsvWriter::Begin(const std::vector<Column>& columns, const std::string& /*sentence*/,
                      const std::vector<std::vector<std::string>>& /*firstRows*/) {
    std::vector<std::string> keys;
    keys.reserve(columns.size());
    for (const Column& column : columns) {
        keys.push_back(column.key);
    }
    if (!keys.empty()) {  // what ended before it had columns has no line at all
        Row(keys);
    }
}

void TsvWriter::Row(const std::vector<std::string>& cells) {
    std::string line;
    line.reserve(UsualLength);
    for (const std::string& cell : cells) {
        line += &cell == &cells.front() ? "" : "\t";
        line += Escaped(cell);
    }
    output << line << '\n';
}

}  // namespace Korvel::Ctl
