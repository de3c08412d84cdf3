#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "library/Ask.h"
#include "library/Session.h"
#include "library/Volume.h"
#include "outcome/Failure.h"

namespace Korvel::Ctl {

/// What a volume is looked up by.
enum class VolumeKey { Id, DisplayName, Snapshot };

/// One volume that is looked for.
struct WantedVolume {
    VolumeKey key = VolumeKey::DisplayName;
    std::string text;
};

/// A volume with the array that holds it.
struct FoundVolume {
    SharedArray array;
    Volume volume;

    /// @return the array's address
    std::string Address() const { return AddressOf(*array); }

    /// @return the volume as a sentence names it, with its array
    std::string Described() const;
};

/// What a search over several arrays gave.
struct VolumeSearch {
    std::vector<std::vector<FoundVolume>> found;  ///< for each wanted volume the ones that match
    std::vector<Failure> failures;                ///< why an array could not be asked
};

/// @return that there is no such volume, and what may be wrong with what was asked for
std::string NotFoundText(const WantedVolume& wanted);

/// @return the groups of volumes, each with its first volume, in the order of the list; volumes without one left out
std::vector<const Volume*> FirstOfGroups(const std::vector<Volume>& volumes);

/// Looks for volumes on every array of the session: one listing for each array, and for snapshots one for each of its
/// groups until all are found. An array that fails does not end the search. The library's own lookups take the first of
/// two volumes with one display name, and ask a group again for each of its volumes.
/// @throws Failure when a text is empty or there is no array to ask
VolumeSearch SearchVolumes(Session& session, const std::vector<WantedVolume>& wanted);

/// Finds the volumes a change is meant for, one for each that is wanted. A change is made only when it is certain which
/// volume is meant: a second match, or an array that could not be asked, ends the command.
/// @throws Failure unless each is found exactly once and all arrays could be asked
std::vector<FoundVolume> FindVolumes(Session& session, const std::vector<WantedVolume>& wanted);

}  // namespace Korvel::Ctl
