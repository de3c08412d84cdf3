#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Korvel::Ctl {

/// One array's entry in the registry.
struct ConfiguredArray {
    std::string address;
    std::string place;                     ///< where the entry stands, for messages
    std::optional<std::string> storedKey;  ///< the AccessKey value's bytes as they are stored; none when it is missing
    std::string accessKey;                 ///< the value's text as the library reads it; empty when it cannot
    std::vector<std::string> faults;       ///< what keeps the library from using the entry
    bool endsProcess = false;              ///< whether the library would end the process over a text that is too long
};

/// The arrays configured in the registry, with everything that is wrong with them.
struct Configuration {
    std::string source;  ///< the file or the registry key that was read
    std::vector<ConfiguredArray> arrays;
    std::vector<std::string> faults;  ///< what is wrong with the source as a whole; no array is known then

    /// @return the array with this address, or null
    const ConfiguredArray* Find(const std::string& address) const;

    /// @return the first fault with its place, or an empty text
    std::string FirstFault() const;
};

/// Reads and judges the configuration. Nothing is thrown for what is wrong with it: that is in the faults.
Configuration ReadConfiguration();

/// Reads the configuration without judging it: the source, the arrays' addresses, places and stored keys, and the
/// faults of the source. One for each system.
Configuration LoadConfiguration();

}  // namespace Korvel::Ctl
