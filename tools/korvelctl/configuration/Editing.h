#pragma once

#include <string>

namespace Korvel::Ctl {

/// \file
/// Changes to the configuration: the registry itself on Windows, elsewhere the file that stands in for it, which is
/// replaced in one step and then its owner's alone. Either the whole change is made or, with a Failure, nothing is.

/// Adds an array.
/// @param address,accessKey as CheckAddress() and CheckAccessKey() pass them
/// @throws Failure when the array is configured already or the configuration cannot be changed
void AddConfiguredArray(const std::string& address, const std::string& accessKey);

/// Removes an array with all that its entry holds.
/// @throws Failure with ExitNotFound when it is not configured, another when the configuration cannot be changed
void RemoveConfiguredArray(const std::string& address);

/// Replaces an array's access key.
/// @throws Failure with ExitNotFound when it is not configured, another when the configuration cannot be changed
void SetConfiguredKey(const std::string& address, const std::string& accessKey);

/// \name What both systems refuse with
/// @{
[[noreturn]] void RefuseConfigured(const std::string& address);
[[noreturn]] void RefuseUnconfigured(const std::string& address);
/// @}

}  // namespace Korvel::Ctl
