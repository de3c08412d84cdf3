#pragma once

#include <string>
#include <vector>

#include "library/VolumeSearch.h"
#include "outcome/Report.h"

namespace Korvel::Ctl {

/// Names the columns in which volumes are shown.
void SetVolumeColumns(Report& report);

/// @return the volume's row
std::vector<std::string> VolumeRow(const FoundVolume& found);

/// @return the volume as a sentence names it, with its array
std::string Described(const FoundVolume& found);

}  // namespace Korvel::Ctl
