#pragma once

#include <string>
#include <utility>
#include <vector>

#include "KInventory.h"

namespace Korvel {

/// What a command has to say besides that it is done.
struct KOutcome {
    std::vector<std::pair<const char*, std::string>> names;  ///< element and name of what was made or changed
    std::vector<std::string> snapshots;                      ///< names of the snapshots of a set
};

/// The replies of the array, as XML documents.
class KReplies {
public:
    /// The volumes with their identities, groups and mappings.
    static std::string Volumes(const std::vector<KInventory::Volume>& volumes);

    /// The servers with their initiator names and addresses.
    static std::string Servers(const std::vector<KInventory::Server>& servers);

    /// The drives.
    static std::string Drives(const std::vector<KInventory::Drive>& drives);

    /// The snapshots of one consistency group.
    static std::string Snapshots(const std::vector<KInventory::Snapshot>& snapshots);

    /// The answer to a command that was carried out, in the command's own response element.
    static std::string Done(const char* element, const KOutcome& outcome);

    /// The answer to a request that was refused with `message`, in the request's own response element.
    static std::string Refused(const char* element, const std::string& message);
};

}  // namespace Korvel
