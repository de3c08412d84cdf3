#pragma once

#include <string>

#include "completion/Vocabulary.h"

namespace Korvel::Reference {

/// \name The scripts that make a shell complete a program's command line
/// Each needs nothing but the shell itself.
/// @{
std::string BashCompletion(const Vocabulary& vocabulary);
std::string ZshCompletion(const Vocabulary& vocabulary);
std::string FishCompletion(const Vocabulary& vocabulary);
std::string PowerShellCompletion(const Vocabulary& vocabulary);
/// @}

}  // namespace Korvel::Reference
