#include "outcome/TableWriter.h"

#include <algorithm>
#include <string_view>

#include "outcome/ExitStatus.h"
#include "outcome/Problem.h"
#include "text/Printable.h"

namespace Korvel::Ctl {
namespace {

constexpr std::size_t Gap = 2;

/// Counts characters and not bytes, so that columns stay straight for names beyond ASCII.
std::size_t Width(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }));
}

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
        widths.push_back(Width(column.heading));
    }
    for (const std::vector<std::string>& row : firstRows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], Width(Printable(row[i])));
        }
    }
    Row(headings);
    std::vector<std::string> rules;
    for (const std::size_t width : widths) {
        rules.emplace_back(width, '-');
    }
    Row(rules);
}

void TableWriter::Row(const std::vector<std::string>& cells) {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const std::string text = Printable(cells[i]);
        line += text;
        if (i + 1 != cells.size()) {
            const std::size_t width = Width(text);
            line.append((width < widths[i] ? widths[i] - width : 0) + Gap, ' ');
        }
    }
    output << line << '\n';
}

void TableWriter::End(const std::vector<Problem>& /*problems*/, ExitStatus /*status*/) {}

}  // namespace Korvel::Ctl
