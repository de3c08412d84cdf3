#include <KorvelAccessLibrary.h>

#include <string>
#include <utility>
#include <vector>

#include "configuration/Configuration.h"
#include "configuration/RegistryHandle.h"

namespace Korvel::Ctl {
namespace {

const std::string RootKey(KRegistryRootKey);

ConfiguredArray ReadArray(const RegistryHandle& root, const std::string& address) {
    ConfiguredArray array;
    array.address = address;
    array.place = "HKEY_LOCAL_MACHINE\\" + RootKey + "\\" + address;
    const RegistryHandle key(root.Handle(), address, KEY_QUERY_VALUE);
    if (key.Error() != ERROR_SUCCESS) {
        array.faults.push_back("the key cannot be opened: " + RegistryReason(key.Error()));
        return array;
    }
    for (RegistryValue& value : ReadValues(key)) {
        if (lstrcmpiA(value.name.c_str(), KAccessKeyValue) == 0) {
            array.storedKey = std::move(value.bytes);
        }
    }
    return array;
}

}  // namespace

Configuration LoadConfiguration() {
    Configuration configuration;
    configuration.source = "HKEY_LOCAL_MACHINE\\" + RootKey;
    const RegistryHandle root(HKEY_LOCAL_MACHINE, RootKey, KEY_READ);
    if (root.Error() != ERROR_SUCCESS) {
        configuration.faults.push_back(configuration.source +
                                       ": the key cannot be opened: " + RegistryReason(root.Error()));
        return configuration;
    }
    std::vector<std::string> addresses;
    const LSTATUS error = ReadSubkeyNames(root, addresses);
    for (const std::string& address : addresses) {
        configuration.arrays.push_back(ReadArray(root, address));
    }
    if (error != ERROR_SUCCESS) {
        configuration.faults.push_back(configuration.source + ": subkey " + std::to_string(addresses.size() + 1) +
                                       " cannot be listed: " + RegistryReason(error));
    }
    return configuration;
}

}  // namespace Korvel::Ctl
