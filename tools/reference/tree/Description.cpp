#include "tree/Description.h"

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

namespace Korvel::Reference {
namespace {

/// @return the words of a list such as "{a,b}" or of a short range such as "INT in [0 - 4]"; none for anything else
std::vector<std::string> ChoicesIn(const std::string& condition) {
    constexpr int mostChoices = 10;
    std::vector<std::string> choices;
    const std::size_t begin = condition.find('{');
    if (begin != std::string::npos) {
        std::istringstream list(condition.substr(begin + 1, condition.find('}') - begin - 1));
        for (std::string choice; std::getline(list, choice, ',');) {
            choices.push_back(choice);
        }
        return choices;
    }
    int lowest = 0;
    int highest = 0;
    const std::size_t range = condition.find(" in [");
    char dash = 0;
    if (range != std::string::npos && std::istringstream(condition.substr(range + 5)) >> lowest >> dash >> highest &&
        highest - lowest < mostChoices) {
        for (int choice = lowest; choice <= highest; ++choice) {
            choices.push_back(std::to_string(choice));
        }
    }
    return choices;
}

OptionInfo DescribeOption(const CLI::Option& option) {
    OptionInfo info;
    for (const std::string& name : option.get_snames()) {
        info.names.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
        info.names.push_back("--" + name);
    }
    // The parser's text for a value is its name and, after a colon, each condition on it.
    const std::string type = option.get_type_name();
    const std::size_t colon = type.find(':');
    info.value = option.get_positional() ? option.get_name() : type.substr(0, colon);
    if (option.get_items_expected_max() == 0) {
        info.value.clear();
    }
    info.choices = colon == std::string::npos ? std::vector<std::string>() : ChoicesIn(type.substr(colon + 1));
    info.description = option.get_description();
    info.byDefault = option.get_default_str();
    info.isRequired = option.get_required();
    info.isRepeatable = option.get_expected_max() > 1;
    return info;
}

OptionGroup DescribeGroup(const CLI::App& group) {
    OptionGroup info;
    info.isRequired = group.get_require_option_min() > 0;
    info.isAlternative = info.isRequired && group.get_require_option_max() == 1;
    for (const CLI::Option* option : group.get_options()) {
        const bool isHelpOfPart = group.get_name().empty() && option == group.get_help_ptr();
        if (!isHelpOfPart && !option->get_group().empty()) {
            info.options.push_back(DescribeOption(*option));
        }
    }
    return info;
}

std::string WithoutFullStop(std::string text) {
    if (!text.empty() && text.back() == '.') {
        text.pop_back();
    }
    return text;
}

/// @param before the words that stand before the command, with a blank at their end
CommandInfo DescribeCommand(const CLI::App& command, const std::string& before) {
    CommandInfo info{command.get_name(),   before + command.get_name(), WithoutFullStop(command.get_description()),
                     command.get_footer(), {DescribeGroup(command)},    {}};
    for (const CLI::App* part : command.get_subcommands([](const CLI::App*) { return true; })) {
        if (part->get_name().empty()) {
            info.groups.push_back(DescribeGroup(*part));
        } else if (!part->get_group().empty()) {
            info.commands.push_back(DescribeCommand(*part, info.path + " "));
        }
    }
    return info;
}

}  // namespace

CommandInfo Describe(const CLI::App& program) {
    return DescribeCommand(program, "");
}

}  // namespace Korvel::Reference
