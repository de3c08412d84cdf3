#pragma once

#include <functional>
#include <string>
#include <vector>

#include "library/Ask.h"
#include "outcome/Failure.h"

namespace Korvel::Ctl {

/// Finds a host on arrays by its iSCSI initiator name; an array registers a host that it does not know. Each array is
/// looked at first, so that a failure before anything changed can be told from one after.
/// @param take takes an array and its identifier of the host
/// @param miss takes the Failure of an array
void FindOrRegisterServer(const std::vector<SharedArray>& arrays, const std::string& iqn,
                          const std::function<void(const SharedArray&, const std::string&)>& take,
                          const std::function<void(const Failure&)>& miss);

/// Finds or registers a host on one array.
/// @return the array's identifier of the host
/// @throws Failure
std::string FindOrRegisterServer(const SharedArray& array, const std::string& iqn);

}  // namespace Korvel::Ctl
