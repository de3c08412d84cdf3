#include "outcome/TableWriter.h"

#include <algorithm>

#include "text/DisplayWidth.h"
#include "text/Printable.h"

namespace Korvel::Ctl {
namespace {

constexpr std::size_t Gap = 2;

const std::string Green = "\x1b[32m";
const std::string Red = "\x1b[31m";
const std::string Plain = "\x1b[0m";

}  // namespace

void TableWriter::Begin(const std::vector<Column>& columns, const std::string& sentence,
                        const std::vector<std::vector<std::string>>& firstRows) {
    if (!sentence.empty()) {
        output << Printable(sentence) << '\n';
    }
    if (firstRows.empty()) {
        return;
    }
    std::vector<std::string> headings;
    for (const Column& column : columns) {
        headings.push_back(column.heading);
        goodStates.push_back(column.goodState);
        widths.push_back(DisplayWidth(column.heading));
    }
    for (const std::vector<std::string>& row : firstRows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], DisplayWidth(Printable(row[i])));
        }
    }
    Line(headings, false);
    std::vector<std::string> rules;
    for (const std::size_t width : widths) {
        rules.emplace_back(width, '-');
    }
    Line(rules, false);
}

void TableWriter::Row(const std::vector<std::string>& cells) {
    Line(cells, inColour);
}

void TableWriter::Line(const std::vector<std::string>& cells, bool coloured) {
    std::string line;
    line.reserve(UsualLength);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const std::string text = Printable(cells[i]);
        if (coloured && !goodStates[i].empty()) {
            line.append(cells[i] == goodStates[i] ? Green : Red).append(text).append(Plain);
        } else {
            line += text;
        }
        if (i + 1 != cells.size()) {
            const std::size_t width = DisplayWidth(text);
            line.append((width < widths[i] ? widths[i] - width : 0) + Gap, ' ');
        }
    }
    output << line << '\n';
}

}  // namespace Korvel::Ctl
