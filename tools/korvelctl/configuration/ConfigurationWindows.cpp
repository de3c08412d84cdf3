#include <KorvelAccessLibrary.h>

#include <windows.h>

#include <system_error>
#include <utility>

#include "configuration/Configuration.h"

namespace Korvel::Ctl {
namespace {

const std::string RootKey(KRegistryRootKey);
constexpr DWORD LongestKeyName = 256;  // the system's own limit of 255 characters, and the terminating zero

/// An open registry key.
class OpenKey {
public:
    OpenKey(HKEY parent, const char* path, REGSAM access) : error(RegOpenKeyExA(parent, path, 0, access, &handle)) {}
    ~OpenKey() {
        if (handle != nullptr) {
            RegCloseKey(handle);
        }
    }
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;

    LSTATUS Error() const { return error; }
    HKEY Handle() const { return handle; }

private:
    HKEY handle = nullptr;
    LSTATUS error;
};

std::string Reason(LSTATUS error) {
    return std::system_category().message(static_cast<int>(error));
}

/// @return the value's bytes as they are stored, or none
std::optional<std::string> ReadStoredValue(const OpenKey& key, const char* valueName) {
    DWORD size = 0;
    if (RegQueryValueExA(key.Handle(), valueName, nullptr, nullptr, nullptr, &size) != ERROR_SUCCESS) {
        return std::nullopt;
    }
    std::string bytes(size, '\0');
    if (RegQueryValueExA(key.Handle(), valueName, nullptr, nullptr, reinterpret_cast<BYTE*>(bytes.data()), &size) !=
        ERROR_SUCCESS) {
        return std::nullopt;
    }
    bytes.resize(size);
    return bytes;
}

ConfiguredArray ReadArray(const OpenKey& root, const std::string& address) {
    ConfiguredArray array;
    array.address = address;
    array.place = "HKEY_LOCAL_MACHINE\\" + RootKey + "\\" + address;
    const OpenKey key(root.Handle(), address.c_str(), KEY_QUERY_VALUE);
    if (key.Error() != ERROR_SUCCESS) {
        array.faults.push_back("the key cannot be opened: " + Reason(key.Error()));
    } else {
        array.storedKey = ReadStoredValue(key, "AccessKey");
    }
    return array;
}

}  // namespace

Configuration LoadConfiguration() {
    Configuration configuration;
    configuration.source = "HKEY_LOCAL_MACHINE\\" + RootKey;
    const OpenKey root(HKEY_LOCAL_MACHINE, RootKey.c_str(), KEY_READ);
    if (root.Error() != ERROR_SUCCESS) {
        configuration.faults.push_back(configuration.source + ": the key cannot be opened: " + Reason(root.Error()));
        return configuration;
    }
    for (DWORD index = 0;; ++index) {
        char name[LongestKeyName];
        DWORD length = LongestKeyName;
        const LSTATUS error = RegEnumKeyExA(root.Handle(), index, name, &length, nullptr, nullptr, nullptr, nullptr);
        if (error == ERROR_NO_MORE_ITEMS) {
            return configuration;
        }
        if (error != ERROR_SUCCESS) {
            configuration.faults.push_back(configuration.source + ": subkey " + std::to_string(index + 1) +
                                           " cannot be listed: " + Reason(error));
            return configuration;
        }
        configuration.arrays.push_back(ReadArray(root, std::string(name, length)));
    }
}

}  // namespace Korvel::Ctl
