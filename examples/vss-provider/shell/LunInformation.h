#pragma once

#include <windows.h>

#include <vdslun.h>

#include <string>
#include <vector>

#include "core/LunIdentity.h"

namespace VssExample {

/// @return the identifiers of a disk as the service describes it
std::vector<StorageIdentifier> IdentifiersOf(const VDS_LUN_INFORMATION& lun);

/// Describes the volume that an array knows by an IEEE identifier. All that the description points to is allocated with
/// CoTaskMemAlloc and its receiver's to free, as the service expects it.
/// @param like a LUN whose kind, vendor and product the volume shares
/// @throws std::bad_alloc; then nothing stays allocated
void DescribeLun(VDS_LUN_INFORMATION& lun, const VDS_LUN_INFORMATION& like, const std::string& ieeeIdentifier);

/// Frees what a description points to.
void FreeLun(VDS_LUN_INFORMATION& lun);

}  // namespace VssExample
