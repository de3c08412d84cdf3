#pragma once

#include <functional>
#include <string>
#include <vector>

#include "library/Ask.h"
#include "outcome/Report.h"

namespace Korvel::Ctl {

/// Finds a host on arrays by its iSCSI initiator name; an array registers a host that it does not know. Each array is
/// looked at first, so that a failure before anything changed can be told from one after.
/// @param report is told why an array has no identifier for the host, and which array has registered it
/// @param take takes an array and its identifier of the host
void FindOrRegisterServer(const std::vector<SharedArray>& arrays, const std::string& iqn, Report& report,
                          const std::function<void(const SharedArray&, const std::string&)>& take);

}  // namespace Korvel::Ctl
