#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tree/CommandInfo.h"

namespace Korvel::Reference {

/// A section of a man page that the parser knows nothing of: terms, each with what is to be said about it.
struct PageSection {
    std::string title;  ///< in capitals
    std::vector<std::pair<std::string, std::string>> terms;
};

/// Makes the man page of a program: its commands with their summaries, its options, and the sections given.
/// @param program the program
/// @param version the program's version
/// @param sections what stands below the options, in this order
/// @return the page in the source form of man(7)
std::string ProgramPage(const CommandInfo& program, const std::string& version,
                        const std::vector<PageSection>& sections);

/// Makes the man page of one command.
/// @param command the command
/// @param program the program that it is a command of
/// @param version the program's version
std::string CommandPage(const CommandInfo& command, const CommandInfo& program, const std::string& version);

/// @return the name of a command's page: its words with a dash between them
std::string PageName(const CommandInfo& command);

}  // namespace Korvel::Reference
