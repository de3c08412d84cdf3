#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "library/VolumeSearch.h"

namespace Korvel::Ctl {

/// The volumes that a command is given, by display name or by identifier.
struct VolumeChoice {
    std::vector<std::string> names;
    std::vector<std::string> ids;

    /// @return what is to be looked for
    std::vector<WantedVolume> Wanted() const;
};

/// Adds VOLUME and --id to a command that wants exactly one volume.
void AddVolumeChoice(CLI::App& command, VolumeChoice& choice);

/// Adds VOLUME... and --id to a command that wants one volume or more.
void AddVolumesChoice(CLI::App& command, VolumeChoice& choice);

}  // namespace Korvel::Ctl
