#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "completion/Scripts.h"
#include "completion/Template.h"
#include "completion/Vocabulary.h"

namespace Korvel::Reference {
namespace {

constexpr char Script[] = R"(# fish completion for @PROGRAM@; made by '@PROGRAM@ completion fish'

# Whether the words before the one that is completed lead to a place.
function __@PROGRAM@_at
    set -l place ''
    set -l skip 0
    for word in (commandline -opc)[2..-1]
        if test $skip = 1
            set skip 0
            continue
        end
        switch $word
            case @VALUED@
                set skip 1
            case '-*'
            case '*'
                switch "$place/$word"
                    case @COMMANDS@
                        set place "$place/$word"
                end
        end
    end
    test "$place" = "$argv[1]"
end

complete -c @PROGRAM@ -f
@LINES@)";

std::string Quoted(const std::string& text) {
    return SingleQuoted(text, "\\'");
}

/// @return what tells how an option's value is completed: its own list, files, or nothing
std::string ValueFlags(const std::vector<Value>& values, const std::string& option) {
    const auto value = std::find_if(values.begin(), values.end(), [&option](const Value& candidate) {
        return std::find(candidate.options.begin(), candidate.options.end(), option) != candidate.options.end();
    });
    if (value == values.end()) {
        return {};
    }
    if (value->isFile) {
        return " -r -F";
    }
    return value->choices.empty() ? " -x" : " -x -a " + Quoted(Joined(value->choices, " "));
}

std::string Lines(const Vocabulary& vocabulary) {
    std::string lines;
    for (const Place& place : vocabulary.places) {
        const std::string begin = "complete -c @PROGRAM@ -n " + Quoted("__@PROGRAM@_at \"" + place.path + "\"");
        for (const Word& word : place.commands) {
            lines += begin + " -a " + Quoted(word.text) + " -d " + Quoted(word.description) + "\n";
        }
        for (const Word& word : place.options) {
            const std::size_t dashes = word.text.find_first_not_of('-');
            lines += begin + (dashes == 1 ? " -s " : " -l ") + word.text.substr(dashes) +
                     ValueFlags(vocabulary.values, word.text) + " -d " + Quoted(word.description) + "\n";
        }
    }
    return lines;
}

}  // namespace

std::string FishCompletion(const Vocabulary& vocabulary) {
    std::string script = Filled(Script, "VALUED", Joined(vocabulary.ValuedOptions(), " "));
    script = Filled(script, "COMMANDS", Joined(vocabulary.CommandPaths(), " "));
    script = Filled(script, "LINES", Lines(vocabulary));
    return Filled(script, "PROGRAM", vocabulary.program);
}

}  // namespace Korvel::Reference
