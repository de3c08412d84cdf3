#include "KReport.h"

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <utility>

namespace Korvel::Ctl {
namespace {

/// Counts characters and not bytes, so that columns stay straight for names beyond ASCII.
std::size_t Width(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }));
}

void PrintLine(std::ostream& output, const std::vector<std::string>& cells, const std::vector<std::size_t>& widths) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const bool last = i + 1 == cells.size();
        output << cells[i] << (last ? "\n" : std::string(widths[i] - Width(cells[i]) + 2, ' '));
    }
}

}  // namespace

std::string Printable(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string visible;
    visible.reserve(text.size());
    for (const char byte : text) {
        const auto code = static_cast<unsigned char>(byte);
        if (code >= 0x20 && code != 0x7f) {
            visible += byte;
        } else {
            visible += "\\x";
            visible += digits[code >> 4U];
            visible += digits[code & 0xFU];
        }
    }
    return visible;
}

void KReport::AddProblem(std::string text, ExitStatus endStatus) {
    problems.push_back(std::move(text));
    status = endStatus;
}

void KReport::Print(std::ostream& output, bool asJson) const {
    if (asJson) {
        PrintJson(output);
        return;
    }
    if (!sentence.empty()) {
        output << Printable(sentence) << '\n';
    }
    if (HasRows()) {
        PrintTable(output);
    }
}

void KReport::PrintTable(std::ostream& output) const {
    std::vector<std::vector<std::string>> lines(2);
    for (const Column& column : columns) {
        lines[0].push_back(column.heading);
    }
    for (const std::vector<std::string>& row : rows) {
        lines.emplace_back();
        std::transform(row.begin(), row.end(), std::back_inserter(lines.back()), Printable);
    }
    std::vector<std::size_t> widths(columns.size(), 0);
    for (const std::vector<std::string>& line : lines) {
        for (std::size_t i = 0; i < line.size(); ++i) {
            widths[i] = std::max(widths[i], Width(line[i]));
        }
    }
    std::transform(widths.begin(), widths.end(), std::back_inserter(lines[1]),
                   [](std::size_t width) { return std::string(width, '-'); });
    for (const std::vector<std::string>& line : lines) {
        PrintLine(output, line, widths);
    }
}

void KReport::PrintJson(std::ostream& output) const {
    auto list = nlohmann::ordered_json::array();
    for (const std::vector<std::string>& row : rows) {
        auto& object = list.emplace_back(nlohmann::ordered_json::object());
        for (std::size_t i = 0; i < row.size(); ++i) {
            object[columns[i].key] = row[i];
        }
    }
    // An array's text that is not UTF-8 must not cost the script the rest of the list.
    output << list.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

}  // namespace Korvel::Ctl
