#include <string>
#include <vector>

#include "completion/Scripts.h"
#include "completion/Template.h"
#include "completion/Vocabulary.h"

namespace Korvel::Reference {
namespace {

constexpr char Script[] = R"(# PowerShell completion for @PROGRAM@; made by '@PROGRAM@ completion powershell'
Register-ArgumentCompleter -Native -CommandName '@PROGRAM@', '@PROGRAM@.exe' -ScriptBlock {
    param($wordToComplete, $commandAst, $cursorPosition)
    $places = @{
@PLACES@    }
    $values = @{
@VALUES@    }
    $place = ''
    $option = ''
    foreach ($element in $commandAst.CommandElements | Select-Object -Skip 1) {
        if ($element.Extent.EndOffset -ge $cursorPosition -and $wordToComplete -ne '') { break }
        $word = $element.Extent.Text
        if ($option -ne '') { $option = '' }
        elseif ($word -like '-*') { if ($values.ContainsKey($word)) { $option = $word } }
        else {
            $next = "$place/$word"
            if ($places.ContainsKey($next)) { $place = $next }
        }
    }
    if ($option -ne '') {
        $candidates = @($values[$option] | ForEach-Object { , @($_, $_) })
    }
    else {
        $candidates = $places[$place]
    }
    foreach ($candidate in $candidates) {
        if ($candidate[0] -like "$wordToComplete*") {
            $kind = if ($candidate[0] -like '-*') { 'ParameterName' } else { 'ParameterValue' }
            [System.Management.Automation.CompletionResult]::new($candidate[0], $candidate[0], $kind, $candidate[1])
        }
    }
}
)";

std::string Quoted(const std::string& text) {
    return SingleQuoted(text, "''");
}

std::string Entries(const std::vector<Place>& places) {
    std::string entries;
    for (const Place& place : places) {
        entries += "        " + Quoted(place.path) + " = @(\n";
        for (const std::vector<Word>& words : {place.commands, place.options}) {
            for (const Word& word : words) {
                entries += "            , @(" + Quoted(word.text) + ", " + Quoted(word.description) + ")\n";
            }
        }
        entries += "        )\n";
    }
    return entries;
}

std::string Entries(const std::vector<Value>& values) {
    std::string entries;
    for (const Value& value : values) {
        std::vector<std::string> choices;
        for (const std::string& choice : value.choices) {
            choices.push_back(Quoted(choice));
        }
        for (const std::string& option : value.options) {
            entries += "        " + Quoted(option) + " = @(" + Joined(choices, ", ") + ")\n";
        }
    }
    return entries;
}

}  // namespace

std::string PowerShellCompletion(const Vocabulary& vocabulary) {
    std::string script = Filled(Script, "PLACES", Entries(vocabulary.places));
    script = Filled(script, "VALUES", Entries(vocabulary.values));
    return Filled(script, "PROGRAM", vocabulary.program);
}

}  // namespace Korvel::Reference
