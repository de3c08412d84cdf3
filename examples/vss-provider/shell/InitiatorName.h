#pragma once

#include <string>

namespace VssExample {

/// @return this host's iSCSI initiator name (IQN): the text value InitiatorName of the key SOFTWARE\KorvelVssExample
/// below
///         HKEY_LOCAL_MACHINE, else what the system's iSCSI initiator says
/// @throws std::runtime_error when there is neither
std::string InitiatorName();

}  // namespace VssExample
