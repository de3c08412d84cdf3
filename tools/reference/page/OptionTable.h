#pragma once

#include <string>

#include "tree/CommandInfo.h"

namespace Korvel::Reference {

/// Makes a table of a program's options and those of all its commands, for a page in Markdown.
std::string OptionTable(const CommandInfo& program);

}  // namespace Korvel::Reference
