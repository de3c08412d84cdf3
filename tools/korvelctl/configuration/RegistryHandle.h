#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace Korvel::Ctl {

/// An open key of the registry.
class RegistryHandle {
public:
    /// Opens a key.
    /// @param parent an open key; stays open
    /// @param path below it; may be empty
    RegistryHandle(HKEY parent, const std::string& path, REGSAM access)
        : error(RegOpenKeyExA(parent, path.c_str(), 0, access, &handle)) {}
    ~RegistryHandle();
    RegistryHandle(const RegistryHandle&) = delete;
    RegistryHandle& operator=(const RegistryHandle&) = delete;

    /// @return what opening came to
    LSTATUS Error() const { return error; }

    /// @return the key; null if it could not be opened
    HKEY Handle() const { return handle; }

private:
    HKEY handle = nullptr;
    LSTATUS error;
};

/// A value as the registry hands it to the library.
struct RegistryValue {
    std::string name;
    unsigned long type = 0;
    std::string bytes;
};

/// Reads the names of a key's subkeys.
/// @return what ended the reading: ERROR_SUCCESS after the last one
LSTATUS ReadSubkeyNames(const RegistryHandle& key, std::vector<std::string>& names);

/// @return the key's values, those left out that cannot be read
std::vector<RegistryValue> ReadValues(const RegistryHandle& key);

/// @return the system's own words for an error
std::string RegistryReason(LSTATUS error);

}  // namespace Korvel::Ctl
