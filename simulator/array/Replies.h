#pragma once

#include <string>
#include <vector>

#include "array/Inventory.h"
#include "array/Outcome.h"

namespace Korvel::Sim {

/// The replies of the array, as XML documents.
class Replies {
public:
    /// The volumes with their identities, groups and mappings.
    static std::string Volumes(const std::vector<Inventory::Volume>& volumes);

    /// The servers with their initiator names and addresses.
    static std::string Servers(const std::vector<Inventory::Server>& servers);

    /// The drives.
    static std::string Drives(const std::vector<Inventory::Drive>& drives);

    /// The snapshots of one consistency group.
    static std::string Snapshots(const std::vector<Inventory::Snapshot>& snapshots);

    /// The answer to a command that was carried out, in the command's own response element.
    static std::string Done(const char* element, const Outcome& outcome);

    /// The answer to a request that was refused with `message`, in the request's own response element.
    static std::string Refused(const char* element, const std::string& message);
};

}  // namespace Korvel::Sim
