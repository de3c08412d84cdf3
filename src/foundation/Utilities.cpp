#include "foundation/Utilities.h"

#include <algorithm>

#include "foundation/KBoundedText.h"
#include "foundation/KErrorHandling.h"
#include "foundation/KException.h"
#include "foundation/KLimits.h"
#include "foundation/KLog.h"
#include "foundation/KStatus.h"
#include "foundation/registry/KRegistryKey.h"

namespace Korvel {

namespace {

void RequireRegistry(bool succeeded, const char* text) {
    if (!succeeded) {
        throw KException(text);
    }
}

void AppendSubkeyNames(KRegistryKey& key, unsigned long count, std::vector<std::string>& names) {
    for (unsigned long index = 0; index < count; ++index) {
        char name[KSubkeyNameCapacity] = {};
        RequireRegistry(key.ReadSubkeyName(index, name, KSubkeyNameCapacity), "Failed to enumerate registry keys");
        names.emplace_back(name);
    }
}

}  // namespace

int Utilities::GetArrayIPList(std::vector<std::string>& addresses) {
    LogTrace("Entering Utilities::GetArrayIPList()");
    const int status = LogAndRethrow([&]() -> int {
        KRegistryKey key;
        RequireRegistry(key.Open(std::string(KRegistryRootKey).c_str(), KRegistryKey::Access::Read),
                        "Failed to open registry key");
        unsigned long count = 0;
        RequireRegistry(key.CountSubkeys(count), "Failed to query the registry key");
        if (count == 0) {
            LogEvent("No Subkeys found");
        } else {
            AppendSubkeyNames(key, count, addresses);
            key.LeaveOpen();  // Kept: open-root-key.
        }
        return KStatusSuccess;
    });
    LogTrace("Exiting Utilities::GetArrayIPList() with return code %d", status);
    return status;
}

int Utilities::GetArrayConfigData(const std::string& address, const std::string& valueName, std::string& value) {
    LogTrace("Entering Utilities::GetArrayConfigData()");
    const int status = LogAndRethrow([&]() -> int {
        KRegistryKey key;
        const KRegistryPath path(KArrayKeyFormat, address);
        RequireRegistry(key.Open(path.Text(), KRegistryKey::Access::QueryValue), "Failed to open registry key");
        unsigned char buffer[KMaxStoredValueSize];
        std::size_t size = sizeof buffer;
        RequireRegistry(key.ReadValue(valueName.c_str(), buffer, size), "Failed to get config value from registry");
        // The stored text need not be terminated: the scan ends with the bytes that were read.
        value.assign(buffer, std::find(buffer, buffer + size, '\0'));
        return KStatusSuccess;
    });
    LogTrace("Exiting Utilities::GetArrayConfigData() with return code %d", status);
    return status;
}

}  // namespace Korvel
