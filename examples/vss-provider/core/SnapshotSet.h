#pragma once

#include <ctime>
#include <string>
#include <vector>

namespace VssExample {

/// One volume of a snapshot set, and what has been made of it on its array so far. A text is empty as long as there is
/// no such thing.
struct SnapshotItem {
    std::string snapshotId;  ///< the service's identifier
    std::string array;       ///< address
    std::string sourceId;    ///< IEEE identifier of the volume that is copied
    std::string volume;      ///< its name on the array
    std::string group;       ///< its consistency group
    std::string snapshot;    ///< name of its snapshot on the array
    std::string clone;       ///< name of the volume made from that snapshot
    std::string cloneId;     ///< IEEE identifier of that volume
    std::string server;      ///< the server on the array that the clone is, or may be, mapped to
};

/// A set of snapshots that is being made, or that has been.
struct SnapshotSet {
    /// How far the set has come. Every step belongs to one state and leads to the next.
    enum class State { Preparing, Prepared, Ready, Committed, Cloned };

    State state = State::Preparing;
    std::time_t taken = 0;  ///< when its snapshots were there
    std::vector<SnapshotItem> items;
};

}  // namespace VssExample
