#include <string>
#include <vector>

#include "completion/Scripts.h"
#include "completion/Template.h"
#include "completion/Vocabulary.h"

namespace Korvel::Reference {
namespace {

/// The words before the one that is completed tell the command; an option that wants a value takes the word after it,
/// or the one after a '=', which the shell makes a word of its own.
constexpr char Script[] = R"(# bash completion for @PROGRAM@; made by '@PROGRAM@ completion bash'
_@PROGRAM@() {
    local current=${COMP_WORDS[COMP_CWORD]} command='' option='' word
    COMPREPLY=()
    [[ $current != '=' ]] || current=''
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ $word == '=' ]]; then
            continue
        elif [[ -n $option ]]; then
            option=''
        elif [[ $word == -- ]]; then
            return
        elif [[ $word == -* ]]; then
            case $word in
            @VALUED@) option=$word ;;
            esac
        else
            case $command/$word in
            @COMMANDS@) command=$command/$word ;;
            esac
        fi
    done
    if [[ -n $option ]]; then
        case $option in
@VALUES@        esac
        return
    fi
    local words
    case $command in
@PLACES@    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -F _@PROGRAM@ @PROGRAM@
)";

std::string Cases(const std::vector<Value>& values) {
    std::string cases;
    for (const Value& value : values) {
        if (value.isFile) {
            cases += "        " + Joined(value.options, " | ") +
                     ")\n            compopt -o filenames\n            mapfile -t COMPREPLY < <(compgen -f -- "
                     "\"$current\")\n            ;;\n";
        } else if (!value.choices.empty()) {
            cases += "        " + Joined(value.options, " | ") + ") mapfile -t COMPREPLY < <(compgen -W '" +
                     Joined(value.choices, " ") + "' -- \"$current\") ;;\n";
        }
    }
    return cases;
}

/// Options are offered when one is begun, and where there is nothing else.
std::string Cases(const std::vector<Place>& places) {
    std::string cases;
    for (const Place& place : places) {
        std::vector<std::string> words;
        for (const Word& word : place.commands) {
            words.push_back(word.text);
        }
        for (const Word& word : place.options) {
            words.push_back(word.text);
        }
        cases += "    " + (place.path.empty() ? "''" : place.path) + ") words='" + Joined(words, " ") + "' ;;\n";
    }
    return cases;
}

}  // namespace

std::string BashCompletion(const Vocabulary& vocabulary) {
    std::string script = Filled(Script, "VALUED", Joined(vocabulary.ValuedOptions(), " | "));
    script = Filled(script, "COMMANDS", Joined(vocabulary.CommandPaths(), " | "));
    script = Filled(script, "VALUES", Cases(vocabulary.values));
    script = Filled(script, "PLACES", Cases(vocabulary.places));
    return Filled(script, "PROGRAM", vocabulary.program);
}

}  // namespace Korvel::Reference
