#include "model/KServer.h"

#include <memory>

#include "foundation/KErrorHandling.h"
#include "foundation/KLog.h"

namespace Korvel {

KServer::KServer(const std::string& id, const std::string& iqn, const std::string& address) {
    LogTrace("Entering KServer::KServer()");
    // A server without an iSCSI address is accepted: the array may not know one.
    RequireArgument(!id.empty() && !iqn.empty(), "KServer Constructor: Invalid input argument");
    auto ownID = std::make_unique<std::string>(id);
    auto ownIQN = std::make_unique<std::string>(iqn);
    auto ownAddress = std::make_unique<std::string>(address);
    spareString = new std::string();
    serverID = ownID.release();
    hostIQN = ownIQN.release();
    iscsiIP = ownAddress.release();
    LogTrace("Exiting KServer::KServer()");
}

KServer::~KServer() {
    LogTrace("Entering KServer::~KServer()");
    delete serverID;
    delete hostIQN;
    delete iscsiIP;
    delete spareString;
    LogTrace("Exiting KServer::~KServer()");
}

}  // namespace Korvel
