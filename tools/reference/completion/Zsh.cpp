#include <string>
#include <vector>

#include "completion/Scripts.h"
#include "completion/Template.h"
#include "completion/Vocabulary.h"

namespace Korvel::Reference {
namespace {

constexpr char Script[] = R"(#compdef @PROGRAM@
# zsh completion for @PROGRAM@; made by '@PROGRAM@ completion zsh'

_@PROGRAM@() {
    local place='' option='' word
    local -a entries options
    for word in "${(@)words[2,CURRENT-1]}"; do
        if [[ -n $option ]]; then
            option=''
        elif [[ $word == -- ]]; then
            return 1
        elif [[ $word == -* ]]; then
            case $word in
            (@VALUED@) option=$word ;;
            esac
        else
            case $place/$word in
            (@COMMANDS@) place=$place/$word ;;
            esac
        fi
    done
    if [[ -z $option && $PREFIX == --*=* ]]; then
        option=${PREFIX%%=*}
        compset -P 1 '*='
    fi
    if [[ -n $option ]]; then
        case $option in
@VALUES@        (*) _message 'value' ;;
        esac
        return
    fi
    case $place in
@PLACES@    esac
    (( ${#entries} )) && _describe -t commands 'command' entries
    _describe -o 'option' options
}

if [[ $funcstack[1] == _@PROGRAM@ ]]; then
    _@PROGRAM@ "$@"
else
    compdef _@PROGRAM@ @PROGRAM@
fi
)";

std::string Entries(const std::vector<Word>& words) {
    std::string entries;
    for (const Word& word : words) {
        std::string text;
        for (const char character : word.text + '\n' + word.description) {
            text += character == ':' ? "\\:" : character == '\n' ? ":" : std::string(1, character);
        }
        entries += "            " + SingleQuoted(text, R"('\'')") + "\n";
    }
    return entries;
}

std::string Cases(const std::vector<Value>& values) {
    std::string cases;
    for (const Value& value : values) {
        if (value.isFile || !value.choices.empty()) {
            cases += "        (" + Joined(value.options, "|") + ") " +
                     (value.isFile ? "_files" : "compadd -- " + Joined(value.choices, " ")) + " ;;\n";
        }
    }
    return cases;
}

std::string Cases(const std::vector<Place>& places) {
    std::string cases;
    for (const Place& place : places) {
        cases += "    (" + (place.path.empty() ? "''" : place.path) + ")\n        entries=(\n" +
                 Entries(place.commands) + "        )\n        options=(\n" + Entries(place.options) +
                 "        )\n        ;;\n";
    }
    return cases;
}

}  // namespace

std::string ZshCompletion(const Vocabulary& vocabulary) {
    std::string script = Filled(Script, "VALUED", Joined(vocabulary.ValuedOptions(), "|"));
    script = Filled(script, "COMMANDS", Joined(vocabulary.CommandPaths(), "|"));
    script = Filled(script, "VALUES", Cases(vocabulary.values));
    script = Filled(script, "PLACES", Cases(vocabulary.places));
    return Filled(script, "PROGRAM", vocabulary.program);
}

}  // namespace Korvel::Reference
