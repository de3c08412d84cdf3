#include "completion/Vocabulary.h"

#include <algorithm>
#include <utility>

namespace Korvel::Reference {
namespace {

void AddOptions(Place& place, const CommandInfo& command) {
    for (const OptionInfo& option : command.Options()) {
        for (const std::string& name : option.names) {
            const bool isKnown = std::any_of(place.options.begin(), place.options.end(),
                                             [&name](const Word& word) { return word.text == name; });
            if (!isKnown) {
                place.options.push_back({name, Summary(option.description)});
            }
        }
    }
}

void AddValues(Vocabulary& vocabulary, const CommandInfo& command) {
    for (const OptionInfo& option : command.Options()) {
        const bool isKnown = option.names.empty() || std::any_of(vocabulary.values.begin(), vocabulary.values.end(),
                                                                 [&option](const Value& value) {
                                                                     return value.options.back() == option.names.back();
                                                                 });
        if (!isKnown && !option.value.empty()) {
            vocabulary.values.push_back({option.names, option.choices, option.value == "FILE"});
        }
    }
}

void Add(Vocabulary& vocabulary, const CommandInfo& command, const CommandInfo& program, const std::string& path) {
    Place place{path, {}, {}};
    for (const CommandInfo& next : command.commands) {
        place.commands.push_back({next.name, Summary(next.description)});
    }
    for (const OptionInfo& option : command.Options()) {
        for (const std::string& choice : option.names.empty() ? option.choices : std::vector<std::string>()) {
            place.commands.push_back({choice, Summary(option.description)});
        }
    }
    AddOptions(place, command);
    AddOptions(place, program);
    vocabulary.places.push_back(std::move(place));
    AddValues(vocabulary, command);
    for (const CommandInfo& next : command.commands) {
        Add(vocabulary, next, program, path + "/" + next.name);
    }
}

}  // namespace

std::vector<std::string> Vocabulary::ValuedOptions() const {
    std::vector<std::string> names;
    for (const Value& value : values) {
        names.insert(names.end(), value.options.begin(), value.options.end());
    }
    return names;
}

std::vector<std::string> Vocabulary::CommandPaths() const {
    std::vector<std::string> paths;
    for (const Place& place : places) {
        if (!place.path.empty()) {
            paths.push_back(place.path);
        }
    }
    return paths;
}

Vocabulary MakeVocabulary(const CommandInfo& program) {
    Vocabulary vocabulary{program.name, {}, {}};
    Add(vocabulary, program, program, "");
    return vocabulary;
}

}  // namespace Korvel::Reference
