#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "configuration/Configuration.h"

namespace Korvel::Ctl {

/// Something in the configuration that the library can live with and that is hardly meant.
struct Finding {
    std::string array;  ///< the address it is about; empty when it is no array's
    std::string text;
    std::string place;
};

/// Looks for what is hardly meant.
/// @param configuration what the library reads
std::vector<Finding> Inspect(const Configuration& configuration);

/// Looks at what the configuration was read from: what it holds beside, and in which form. One for each system.
std::vector<Finding> InspectSource(const Configuration& configuration);

/// @param type the registry's number for the value's type
/// @param bytes the value as the library receives it
/// @return what the library makes of a stored access key if it is not what was meant; otherwise an empty text
std::string DescribeMisreading(unsigned long type, std::string_view bytes);

/// @return whether a name that has no meaning here is so like another that this one is meant; without regard to case
bool IsMisspelling(std::string_view name, std::string_view meant);

/// @return the finding's text for a value that IsMisspelling() of the access key's
std::string DescribeMisspeltValue(const std::string& name);

}  // namespace Korvel::Ctl
