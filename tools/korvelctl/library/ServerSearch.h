#pragma once

#include <KorvelAccessLibrary.h>

#include <string>

namespace Korvel::Ctl {

/// Finds a host on an array by its iSCSI initiator name; the array registers it if it does not know it.
/// @return the array's identifier of the host
/// @throws Failure when the name cannot be sent or the array fails
std::string FindOrRegisterServer(KArray& array, const std::string& iqn);

}  // namespace Korvel::Ctl
