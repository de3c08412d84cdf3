#pragma once

namespace Korvel {

/// The commands, numbered as the reader of their replies knows them.
enum KCommandAction : int {
    KCommandCreateSnapshotSet = 0,
    KCommandDeleteSnapshot = 1,
    KCommandCreateServer = 2,
    KCommandCloneVolume = 3,
    KCommandAttachVolume = 4,
    KCommandDetachVolume = 5,
    KCommandDeleteVolume = 6,
    KCommandResyncVolume = 7,
};

}  // namespace Korvel
