#pragma once

#include <string>
#include <vector>

namespace Korvel::Reference {

/// An option or an argument of a command, as its help shows it.
struct OptionInfo {
    std::vector<std::string> names;  ///< with their dashes; empty for an argument, which stands by its place
    std::string value;               ///< what stands for its value, for example FILE; empty for a mere switch
    std::string description;
    std::string byDefault;             ///< what counts when it is not given; may be empty
    std::vector<std::string> choices;  ///< the only values it takes; empty when there is no such list
    bool isRequired = false;
    bool isRepeatable = false;
};

/// Options of a command that belong together.
struct OptionGroup {
    bool isAlternative = false;  ///< exactly one of them has to be given
    bool isRequired = false;     ///< at least one of them has to be given
    std::vector<OptionInfo> options;
};

/// A command of a program, the program itself or a family of its commands.
struct CommandInfo {
    std::string name;                   ///< its own word
    std::string path;                   ///< all words that call it, the program's name first
    std::string description;            ///< without a full stop at its end
    std::string footer;                 ///< what its help ends with
    std::vector<OptionGroup> groups;    ///< first the options without a group of their own
    std::vector<CommandInfo> commands;  ///< in the order of the help

    /// @return the options of all groups
    std::vector<OptionInfo> Options() const;
};

/// @return the first clause of a description, for where there is room for no more
std::string Summary(const std::string& description);

}  // namespace Korvel::Reference
