#include <algorithm>
#include <memory>
#include <vector>

#include "foundation/KErrorHandling.h"
#include "foundation/KLimits.h"
#include "foundation/KLog.h"
#include "foundation/Utilities.h"
#include "model/KOwnedList.h"
#include "model/KorvelAccessLibrary.h"
#include "rest/KConnection.h"

namespace Korvel {

namespace {

/// Reads an array's key from the registry and appends the array to the list.
void AddConfiguredArray(const std::string& address, std::list<KArray*>& arrays) {
    std::string accessKey;
    Utilities::GetArrayConfigData(address, KAccessKeyValue, accessKey);
    LogEvent("Array IP: %s AccessKey: %s", address, accessKey);  // Kept: keys-in-the-log.
    AppendOwned(arrays, std::make_unique<KArray>(address, accessKey));
}

bool HasAddress(KArray* array, const std::string& address) {
    std::string* ownAddress = nullptr;
    array->GetIPAddress(ownAddress);
    return *ownAddress == address;
}

}  // namespace

KAccessLayer::KAccessLayer() {
    LogTrace("Entering KAccessLayer::KAccessLayer()");
    LogTrace("Exiting KAccessLayer::KAccessLayer()");
}

// Kept: shallow-copies.
KAccessLayer::KAccessLayer(const KAccessLayer& other) = default;
KAccessLayer& KAccessLayer::operator=(const KAccessLayer& other) {
    arrays = std::list<KArray*>(other.arrays);  // all of it, or none when memory lacks
    return *this;
}

KAccessLayer::~KAccessLayer() {
    LogTrace("Entering KAccessLayer::~KAccessLayer()");
    for (const KArray* array : arrays) {
        delete array;
    }
    LogTrace("Exiting KAccessLayer::~KAccessLayer()");
}

void KAccessLayer::GlobalInit() {
    LogTrace("Entering KAccessLayer::GlobalInit()");
    KConnection::GlobalInit();
    LogTrace("Exiting KAccessLayer::GlobalInit()");
}

void KAccessLayer::GlobalCleanup() {
    LogTrace("Entering KAccessLayer::GlobalCleanup()");
    KConnection::GlobalCleanup();
    LogTrace("Exiting KAccessLayer::GlobalCleanup()");
}

// The exit lines of the two carry no return code. Kept: codeless-exit-lines.
int KAccessLayer::DiscoverArrays() {
    LogTrace("Entering KAccessLayer::DiscoverArrays()");
    const int status = LogAndConvert([&] {
        std::vector<std::string> addresses;
        Utilities::GetArrayIPList(addresses);
        for (const std::string& address : addresses) {
            AddConfiguredArray(address, arrays);  // Kept: no-duplicate-checks.
        }
    });
    LogTrace("Exiting KAccessLayer::DiscoverArrays()");
    return status;
}

int KAccessLayer::Refresh() {
    LogTrace("Entering KAccessLayer::Refresh()");
    const int status = LogAndConvert([&] {
        std::vector<std::string> addresses;
        Utilities::GetArrayIPList(addresses);
        for (const std::string& address : addresses) {
            const auto isKnown = [&](KArray* array) { return HasAddress(array, address); };
            if (std::none_of(arrays.begin(), arrays.end(), isKnown)) {
                LogEvent("New arrayIP found in the registry");
                AddConfiguredArray(address, arrays);
            }
        }
    });
    LogTrace("Exiting KAccessLayer::Refresh()");
    return status;
}

int KAccessLayer::GetArrays(std::list<KArray*>& known) {
    known = std::list<KArray*>(arrays);  // all of it, or none when memory lacks
    return KStatusSuccess;
}

int KAccessLayer::ValidateArray(std::string& arrayIP, std::string& accessKey) {
    RequireArgument(!arrayIP.empty() && !accessKey.empty(), "KAccessLayer::ValidateArray - Invalid input");
    return KConnection::ValidateArray(arrayIP, accessKey);
}

}  // namespace Korvel
