#pragma once

#include <memory>

#include "KorvelAccessLibrary.h"

namespace Korvel {

/// Creates a volume that belongs to an array but is not in its list yet.
/// @throws std::invalid_argument when a text is empty
inline std::unique_ptr<KVolume> CreateVolumeOf(KArray* array, const std::string& id, const std::string& name,
                                               const std::string& dispName, const std::string& group) {
    auto volume = std::make_unique<KVolume>(id, name, dispName, group);
    volume->SetArray(array);
    return volume;
}

/// Gives a volume to an array.
/// @return the volume, now the array's; a failed append destroys it and leaves the array's list as it was
inline KVolume* AppendVolume(KArray* array, std::unique_ptr<KVolume> volume) {
    array->AddVolumeToList(volume.get());
    return volume.release();
}

}  // namespace Korvel
