#pragma once

#include <KorvelAccessLibrary.h>

#include <optional>
#include <string>
#include <vector>

#include "library/Server.h"
#include "library/Snapshot.h"
#include "library/Volume.h"

namespace Korvel::Ctl {

/// The listings of an array, which the public interface does not have: whoever only wants to use the library need not
/// read on. All throw what the library throws.

/// @return the array's volumes
std::vector<Volume> ListVolumes(KArray& array);

/// @return the snapshots of one group
std::vector<Snapshot> ListSnapshots(KArray& array, const std::string& group);

/// @return the hosts that the array knows
std::vector<Server> ListServers(KArray& array);

/// @return the array's identifier of the host with this initiator name, or none; unlike the public lookup it does not
///         make the array register the host
std::optional<std::string> FindServer(KArray& array, const std::string& iqn);

}  // namespace Korvel::Ctl
