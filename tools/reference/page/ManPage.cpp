#include "page/ManPage.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <sstream>

namespace Korvel::Reference {
namespace {

/// Makes text of any kind text in a page: no character of it formats anything.
std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char character : text) {
        const bool atLineBegin = escaped.empty() || escaped.back() == '\n';
        switch (character) {
            case '\\':
                escaped += "\\e";
                break;
            case '-':
                escaped += "\\-";
                break;
            case '"':
                escaped += "\\(dq";
                break;
            case '\'':
                escaped += "\\(aq";
                break;
            case '.':
                escaped += atLineBegin ? "\\&." : ".";
                break;
            default:
                escaped += character;
        }
    }
    return escaped;
}

std::string Bold(const std::string& text) {
    return "\\fB" + Escaped(text) + "\\fR";
}

std::string Italic(const std::string& text) {
    return "\\fI" + Escaped(text) + "\\fR";
}

std::string Section(const std::string& title) {
    return ".SH " + title + "\n";
}

std::string UpperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char character) { return static_cast<char>(std::toupper(character)); });
    return text;
}

std::string LowerCaseBegin(std::string text) {
    text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
    return text;
}

/// @param name what the option is called in a synopsis; empty for an argument
std::string WithValue(const std::string& name, const OptionInfo& option) {
    std::string text = name.empty() ? "" : Bold(name);
    if (!option.value.empty()) {
        text += (name.empty() ? "" : " ") + Italic(option.value);
    }
    return text + (option.isRepeatable && name.empty() ? "..." : "");
}

std::string Synopsis(const OptionInfo& option) {
    return WithValue(option.names.empty() ? "" : option.names.back(), option);
}

/// @return what has to be given of a group
std::string Synopsis(const OptionGroup& group) {
    std::string required;
    std::string alternatives;
    for (const OptionInfo& option : group.options) {
        if (option.isRequired) {
            required += " " + Synopsis(option);
        } else if (group.isRequired) {
            alternatives += (alternatives.empty() ? "" : " | ") + Synopsis(option);
        }
    }
    if (!alternatives.empty()) {
        required += " (" + alternatives + (group.isAlternative ? ")" : ")...");
    }
    return required;
}

std::string Synopsis(const CommandInfo& command) {
    std::string text = Bold(command.path);
    for (const OptionGroup& group : command.groups) {
        text += Synopsis(group);
    }
    if (!command.commands.empty()) {
        text += " " + Italic("FAMILY") + " " + Italic("COMMAND");
    }
    return Section("SYNOPSIS") + text + " [" + Italic("OPTION") + "...]\n";
}

std::string Sentence(const std::string& text) {
    std::string sentence = Escaped(text);
    if (!sentence.empty()) {
        sentence.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(sentence.front())));
    }
    return sentence.empty() || sentence.back() == '.' ? sentence : sentence + ".";
}

std::string Term(const std::string& term, const std::string& text) {
    return ".TP\n" + term + "\n" + text + "\n";
}

std::string Item(const OptionInfo& option) {
    std::string term;
    for (const std::string& name : option.names) {
        term += (term.empty() ? "" : ", ") + WithValue(name, option);
    }
    if (option.names.empty()) {
        term = WithValue("", option);
    }
    return Term(term, Sentence(option.description) +
                          (option.byDefault.empty() ? "" : "\nDefault: " + Escaped(option.byDefault) + "."));
}

std::string ListOptions(const CommandInfo& command) {
    std::string text;
    for (const OptionInfo& option : command.Options()) {
        text += Item(option);
    }
    return Section("OPTIONS") + text;
}

/// A footer whose first line is a title: "Example:" and lines that are shown as they stand.
std::string Examples(const std::string& footer) {
    if (footer.rfind("Example", 0) != 0) {
        return {};
    }
    std::istringstream lines(footer);
    std::string line;
    std::getline(lines, line);
    std::string text = Section(UpperCase(line.substr(0, line.find(':')))) + ".nf\n";
    bool shown = true;
    while (std::getline(lines, line)) {
        if (line.empty()) {
            shown = false;  // what follows is no example
            text += ".fi\n.PP\n";
        } else {
            text += Escaped(shown ? line.substr(std::min<std::size_t>(2, line.find_first_not_of(' '))) : line) + "\n";
        }
    }
    return text + (shown ? ".fi\n" : "");
}

std::string Begin(const CommandInfo& command, const CommandInfo& program, const std::string& version) {
    return ".TH " + UpperCase(Escaped(PageName(command))) + R"( 1 "" ")" + program.name + " " + version +
           "\" \"User Commands\"\n" + Section("NAME") + Escaped(PageName(command)) + " \\- " +
           Escaped(LowerCaseBegin(Summary(command.description))) + "\n" + Synopsis(command);
}

std::string ListCommands(const CommandInfo& family) {
    std::string text;
    for (const CommandInfo& command : family.commands) {
        text += command.commands.empty()
                    ? Term("\\fB" + Escaped(command.path) + "\\fR",
                           Sentence(command.description) + "\nSee " + Bold(PageName(command)) + "(1).")
                    : ListCommands(command);
    }
    return text;
}

}  // namespace

std::string ProgramPage(const CommandInfo& program, const std::string& version,
                        const std::vector<PageSection>& sections) {
    std::string page = Begin(program, program, version) + Section("DESCRIPTION") + Sentence(program.description) + "\n";
    if (!program.commands.empty()) {
        page += Section("COMMANDS") + ListCommands(program);
    }
    page += ListOptions(program);
    for (const PageSection& section : sections) {
        page += Section(section.title);
        for (const auto& [term, text] : section.terms) {
            page += Term(Bold(term), Sentence(text));
        }
    }
    return page + Examples(program.footer);
}

std::string CommandPage(const CommandInfo& command, const CommandInfo& program, const std::string& version) {
    return Begin(command, program, version) + Section("DESCRIPTION") + Sentence(command.description) + "\n" +
           ListOptions(command) + ".PP\nThe options of " + Bold(program.name) + "(1) may be given, too.\n" +
           Examples(command.footer) + Section("EXIT STATUS") + "See " + Bold(program.name) + "(1).\n" +
           Section("SEE ALSO") + Bold(program.name) + "(1)\n";
}

std::string PageName(const CommandInfo& command) {
    std::string name = command.path;
    std::replace(name.begin(), name.end(), ' ', '-');
    return name;
}

}  // namespace Korvel::Reference
