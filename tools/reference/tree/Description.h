#pragma once

#include <CLI/CLI.hpp>

#include "tree/CommandInfo.h"

namespace Korvel::Reference {

/// Reads from a parser all that its help would tell. Pages, completion and tables are made of this, so that the parser
/// is the one place where an option is described.
/// @param program the parser; what it hides from its help is left out
CommandInfo Describe(const CLI::App& program);

}  // namespace Korvel::Reference
