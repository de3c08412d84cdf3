#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Korvel::Reference {

/// Puts the value for each mark of a text.
/// @param text marks stand in it as @NAME@
/// @param mark the mark's name
/// @param value what takes the place of each
std::string Filled(std::string text, std::string_view mark, std::string_view value);

/// @return the words with a separator between them
std::string Joined(const std::vector<std::string>& words, std::string_view separator);

/// @return the text in single quotes
/// @param inside what stands for a single quote in it
std::string SingleQuoted(std::string_view text, std::string_view inside);

}  // namespace Korvel::Reference
