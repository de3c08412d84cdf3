#include <list>
#include <memory>
#include <string>
#include <utility>

#include "foundation/KErrorHandling.h"
#include "foundation/KLog.h"
#include "model/KServer.h"
#include "model/KorvelAccessLibrary.h"
#include "rest/KConnection.h"

namespace Korvel {

KArray::KArray(const std::string& address, const std::string& key) {
    LogTrace("Entering KArray::KArray() for %s", address);
    RequireArgument(!address.empty() && !key.empty(), "KArray Constructor: Invalid input argument");
    auto ownAddress = std::make_unique<std::string>(address);
    auto ownKey = std::make_unique<std::string>(key);
    connection = new KConnection(address, key);
    ipAddress = ownAddress.release();
    accessKey = ownKey.release();
    LogTrace("Exiting KArray::KArray()");
}

// Kept: shallow-copies.
KArray::KArray(const KArray& other) = default;
KArray& KArray::operator=(const KArray& other) {
    if (this == &other) {
        return *this;
    }
    std::list<KServer*> servers(other.serverList);
    std::list<KVolume*> volumes(other.volumeList);  // from here on nothing fails
    ipAddress = other.ipAddress;
    accessKey = other.accessKey;
    connection = other.connection;
    serverList = std::move(servers);
    volumeList = std::move(volumes);
    return *this;
}

KArray::~KArray() {
    LogTrace("Entering KArray::~KArray() for %s", *ipAddress);
    delete ipAddress;
    delete accessKey;
    delete connection;
    for (const KServer* server : serverList) {
        delete server;
    }
    for (const KVolume* volume : volumeList) {
        delete volume;
    }
    LogTrace("Exiting KArray::~KArray()");
}

int KArray::GetConnection(KConnection*& ownConnection) {
    ownConnection = connection;
    return KStatusSuccess;
}

int KArray::GetIPAddress(std::string*& ownAddress) {
    ownAddress = ipAddress;
    return KStatusSuccess;
}

int KArray::AddVolumeToList(KVolume* volume) {
    volumeList.push_back(volume);
    return KStatusSuccess;
}

int KArray::AddServerToList(KServer* server) {
    serverList.push_back(server);
    return KStatusSuccess;
}

}  // namespace Korvel
