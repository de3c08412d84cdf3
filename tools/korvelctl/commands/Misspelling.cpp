#include "commands/Misspelling.h"

#include <algorithm>
#include <cstddef>

#include "text/EditDistance.h"

namespace Korvel::Ctl {
namespace {

std::string Sentence(const std::string& kind, const std::string& word, const std::vector<std::string>& known) {
    std::string text = "there is no " + kind + " '" + word + "'";
    const auto nearest = std::min_element(known.begin(), known.end(), [&word](const auto& one, const auto& other) {
        return EditDistance(word, one) < EditDistance(word, other);
    });
    if (nearest != known.end() && EditDistance(word, *nearest) <= std::max<std::size_t>(2, word.size() / 3)) {
        text += "; do you mean '" + *nearest + "'?";
    }
    return text;
}

/// The options that may stand after a command: its own and its parents'.
std::vector<const CLI::Option*> OptionsOf(const CLI::App* app) {
    std::vector<const CLI::Option*> options;
    for (; app != nullptr; app = app->get_parent()) {
        const auto own = app->get_options();
        options.insert(options.end(), own.begin(), own.end());
        for (const CLI::App* group :
             app->get_subcommands([](const CLI::App* sub) { return sub->get_name().empty(); })) {
            const auto grouped = group->get_options();
            options.insert(options.end(), grouped.begin(), grouped.end());
        }
    }
    return options;
}

std::vector<std::string> NamesOf(const std::vector<const CLI::App*>& commands) {
    std::vector<std::string> names;
    for (const CLI::App* command : commands) {
        if (!command->get_name().empty()) {
            names.push_back(command->get_name());
        }
    }
    return names;
}

std::vector<std::string> NamesOf(const std::vector<const CLI::Option*>& options) {
    std::vector<std::string> names;
    for (const CLI::Option* option : options) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

/// Reads an option.
/// @param wantsValue receives whether the next word is the option's value
/// @return what is wrong with it, or an empty text
std::string TakeOption(const CLI::App* app, const std::string& word, bool& wantsValue) {
    const std::string name = word.substr(0, word.find('='));
    const auto options = OptionsOf(app);
    const auto option = std::find_if(options.begin(), options.end(),
                                     [&name](const CLI::Option* candidate) { return candidate->check_name(name); });
    if (option == options.end()) {
        return Sentence("option", name, NamesOf(options));
    }
    wantsValue = name == word && (*option)->get_expected_max() > 0;
    return {};
}

/// Reads a word that is no option: a family, a command or an argument of one.
/// @param app what was read so far; receives what the word leads to
/// @return what is wrong with it, or an empty text
std::string TakeCommand(const CLI::App*& app, const std::string& word) {
    const auto commands = app->get_subcommands([](const CLI::App*) { return true; });
    const auto names = NamesOf(commands);
    if (names.empty()) {
        return {};  // an argument
    }
    const auto next = std::find_if(commands.begin(), commands.end(),
                                   [&word](const CLI::App* command) { return command->get_name() == word; });
    if (next == commands.end()) {
        return Sentence(app->get_parent() == nullptr ? "family of commands" : "command of this family", word, names);
    }
    app = *next;
    return {};
}

}  // namespace

std::string DescribeMisspelling(const CLI::App& program, const std::vector<std::string>& words) {
    const CLI::App* app = &program;
    bool isValue = false;
    for (const std::string& word : words) {
        if (isValue) {
            isValue = false;
            continue;
        }
        if (word == "--") {
            break;
        }
        const bool isOption = word.size() > 1 && word.front() == '-';
        std::string wrong = isOption ? TakeOption(app, word, isValue) : TakeCommand(app, word);
        if (!wrong.empty()) {
            return wrong;
        }
    }
    return {};
}

}  // namespace Korvel::Ctl
