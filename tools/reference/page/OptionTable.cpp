#include "page/OptionTable.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace Korvel::Reference {
namespace {

const std::string EveryCommand = "all";

/// Options that are called and described alike are one row, wherever they belong.
struct Row {
    std::string option;
    std::string description;
    std::vector<std::string> commands;
};

std::string Called(const OptionInfo& option) {
    std::string text;
    for (const std::string& name : option.names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    text += (text.empty() || option.value.empty() ? "" : " ") + option.value;
    return "`" + text + (option.isRepeatable && option.names.empty() ? "..." : "") + "`";
}

void Collect(const CommandInfo& command, const std::string& place, std::vector<Row>& rows) {
    for (const OptionInfo& option : command.Options()) {
        const bool isHelp = std::find(option.names.begin(), option.names.end(), "--help") != option.names.end();
        if (isHelp && place != EveryCommand) {
            continue;
        }
        auto row = std::find_if(rows.begin(), rows.end(), [&](const Row& known) {
            return known.option == Called(option) && known.description == option.description;
        });
        if (row == rows.end()) {
            row = rows.insert(rows.end(), {Called(option), option.description, {}});
        }
        row->commands.push_back(place);
    }
    for (const CommandInfo& part : command.commands) {
        Collect(part, part.path.substr(part.path.find(' ') + 1), rows);
    }
}

/// @return the commands, where they are all that a family has only the family
std::string Listed(std::vector<std::string> commands, const CommandInfo& program) {
    for (const CommandInfo& family : program.commands) {
        const std::string begin = family.name + " ";
        const auto isOfFamily = [&begin](const std::string& command) { return command.rfind(begin, 0) == 0; };
        const auto first = std::find_if(commands.begin(), commands.end(), isOfFamily);
        const auto count = static_cast<std::size_t>(std::count_if(commands.begin(), commands.end(), isOfFamily));
        if (count > 1 && count == family.commands.size()) {
            *first = begin + "...";
            commands.erase(std::remove_if(first + 1, commands.end(), isOfFamily), commands.end());
        }
    }
    std::string text;
    for (const std::string& command : commands) {
        text += (text.empty() ? "`" : ", `") + command + "`";
    }
    return text;
}

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char character : text) {
        escaped += character == '|' ? "\\|" : std::string(1, character);
    }
    return escaped;
}

}  // namespace

std::string OptionTable(const CommandInfo& program) {
    std::vector<Row> rows;
    Collect(program, EveryCommand, rows);
    std::string table = "| Option | What it does | Commands |\n|---|---|---|\n";
    for (const Row& row : rows) {
        const bool isEverywhere = row.commands.front() == EveryCommand;
        table += "| " + Escaped(row.option) + " | " + Escaped(row.description) + " | " +
                 (isEverywhere ? EveryCommand : Listed(row.commands, program)) + " |\n";
    }
    return table;
}

}  // namespace Korvel::Reference
