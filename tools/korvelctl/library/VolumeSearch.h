#pragma once

#include <string>
#include <vector>

#include "library/Session.h"

namespace Korvel::Ctl {

/// What a volume is looked up by.
enum class VolumeKey { Id, DisplayName, Snapshot };

/// A volume with the array that holds it. Both belong to the session.
struct FoundVolume {
    KArray* array = nullptr;
    KVolume* volume = nullptr;

    std::string Name() const;
    std::string DisplayName() const;
    std::string Group() const;
    std::string Id() const;
};

/// What a search over several arrays gave: the volumes, one an array at most, and why an array could not be asked.
struct VolumeSearch {
    std::vector<FoundVolume> found;
    std::vector<std::string> problems;
};

/// Looks for a volume on every array of the session. An array that fails does not end the search.
/// @throws Failure when the text is empty or there is no array to ask
VolumeSearch SearchVolume(Session& session, VolumeKey key, const std::string& text);

/// Finds the one volume a change is meant for. A change is made only when it is certain which array is meant: a match
/// on two arrays, or an array that could not be asked, ends the command.
/// @throws Failure unless exactly one array of the session has the volume and all could be asked
FoundVolume FindOneVolume(Session& session, VolumeKey key, const std::string& text);

}  // namespace Korvel::Ctl
