#pragma once

#include <string>
#include <vector>

#include "tree/CommandInfo.h"

namespace Korvel::Reference {

/// A word that may come next.
struct Word {
    std::string text;
    std::string description;
};

/// The words that may follow some others.
struct Place {
    std::string path;  ///< the commands' words so far without the program's name, a '/' before each; empty at the start
    std::vector<Word> commands;  ///< further commands, or the values of an argument that takes only these
    std::vector<Word> options;   ///< the place's own and those of the program
};

/// What may follow an option that wants a value.
struct Value {
    std::vector<std::string> options;  ///< their names
    std::vector<std::string> choices;  ///< the only values; empty when there is no such list
    bool isFile = false;
};

/// All that a shell has to know to complete a command line. An option means the same wherever it stands.
struct Vocabulary {
    std::string program;
    std::vector<Place> places;
    std::vector<Value> values;

    /// @return the options that want a value
    std::vector<std::string> ValuedOptions() const;

    /// @return the paths of the commands and families
    std::vector<std::string> CommandPaths() const;
};

/// Makes a program's vocabulary.
Vocabulary MakeVocabulary(const CommandInfo& program);

}  // namespace Korvel::Reference
