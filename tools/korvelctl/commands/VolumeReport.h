#pragma once

#include <string>
#include <vector>

#include "library/Volume.h"
#include "outcome/Report.h"

namespace Korvel::Ctl {

/// Names the columns in which volumes are shown.
void SetVolumeColumns(Report& report);

/// @param address the address of the array that holds the volume
/// @return the volume's row
std::vector<std::string> VolumeRow(std::string address, Volume volume);

}  // namespace Korvel::Ctl
