#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace Korvel::Ctl {

/// Looks for the word on a command line that the parser does not know: a family, a command or an option.
/// @param program the parser
/// @param words the command line's words without the program's name
/// @return a sentence that names the word and the one that may be meant; empty when all are known
std::string DescribeMisspelling(const CLI::App& program, const std::vector<std::string>& words);

}  // namespace Korvel::Ctl
