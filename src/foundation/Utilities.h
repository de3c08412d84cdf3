#pragma once

#include <string>
#include <vector>

namespace Korvel {

/// Reads the configuration of the arrays from the registry: one subkey per array address, each with the array's access
/// key. Both operations log a failure and pass it on.
class Utilities {
public:
    /// Lists the configured arrays.
    /// @param addresses the addresses are appended in the registry's order; those appended before a failure stay
    /// @return 0
    /// @throws KException when the root key cannot be opened, or a subkey's name not be read (256 characters or more)
    static int GetArrayIPList(std::vector<std::string>& addresses);

    /// Reads one value of one array.
    /// @param address the array's address, as its subkey is named; at most 232 characters
    /// @param valueName the value's name
    /// @param value receives the text up to its first zero byte; unchanged on failure
    /// @return 0
    /// @throws KException when there is no such array or value, or the value has more than 256 bytes
    static int GetArrayConfigData(const std::string& address, const std::string& valueName, std::string& value);
};

}  // namespace Korvel
