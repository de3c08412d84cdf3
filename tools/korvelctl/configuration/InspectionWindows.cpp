#include <KorvelAccessLibrary.h>

#include <windows.h>

#include <string>
#include <vector>

#include "configuration/Configuration.h"
#include "configuration/Inspection.h"
#include "configuration/RegistryHandle.h"

namespace Korvel::Ctl {
namespace {

const std::string RootKey(KRegistryRootKey);

std::vector<std::string> SubkeyNames(const RegistryHandle& key) {
    std::vector<std::string> names;
    if (key.Error() == ERROR_SUCCESS) {
        ReadSubkeyNames(key, names);
    }
    return names;
}

/// A key is the library's by two names below SOFTWARE; either may be misspelt.
void FindMisspeltKeys(std::vector<Finding>& findings) {
    const std::string hive = RootKey.substr(0, RootKey.find('\\'));
    const std::string maker = RootKey.substr(hive.size() + 1, RootKey.rfind('\\') - hive.size() - 1);
    const RegistryHandle software(HKEY_LOCAL_MACHINE, hive, KEY_READ);
    for (const std::string& name : SubkeyNames(software)) {
        if (lstrcmpiA(name.c_str(), maker.c_str()) != 0 && !IsMisspelling(name, maker)) {
            continue;
        }
        const RegistryHandle makers(software.Handle(), name, KEY_READ);
        for (const std::string& product : SubkeyNames(makers)) {
            std::string path = hive;
            path.append("\\").append(name).append("\\").append(product);
            if (IsMisspelling(path, RootKey)) {
                path.insert(0, "HKEY_LOCAL_MACHINE\\");
                findings.push_back({"", "the key is not read: is HKEY_LOCAL_MACHINE\\" + RootKey + " meant?", path});
            }
        }
    }
}

void InspectArray(const ConfiguredArray& array, std::vector<Finding>& findings) {
    const RegistryHandle root(HKEY_LOCAL_MACHINE, RootKey, KEY_READ);
    const RegistryHandle key(root.Handle(), array.address, KEY_QUERY_VALUE);
    if (key.Error() != ERROR_SUCCESS) {
        return;  // a fault of the configuration
    }
    for (const RegistryValue& value : ReadValues(key)) {
        const bool isAccessKey = lstrcmpiA(value.name.c_str(), KAccessKeyValue) == 0;
        const std::string misreading = isAccessKey ? DescribeMisreading(value.type, value.bytes) : "";
        if (!misreading.empty()) {
            findings.push_back({array.address, misreading, array.place});
        } else if (IsMisspelling(value.name, KAccessKeyValue)) {
            findings.push_back({array.address, DescribeMisspeltValue(value.name), array.place});
        }
    }
}

}  // namespace

std::vector<Finding> InspectSource(const Configuration& configuration) {
    std::vector<Finding> findings;
    FindMisspeltKeys(findings);
    for (const ConfiguredArray& array : configuration.arrays) {
        InspectArray(array, findings);
    }
    return findings;
}

}  // namespace Korvel::Ctl
