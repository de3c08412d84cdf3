#include <memory>

#include "foundation/KErrorHandling.h"
#include "foundation/KLog.h"
#include "foundation/KText.h"
#include "model/KOwnedList.h"
#include "model/KServer.h"
#include "model/KorvelAccessLibrary.h"
#include "rest/KConnection.h"

namespace Korvel {

int KArray::GetServerIDByIQN(const std::string& hostIQN, std::string& serverID) {
    LogTrace("Entering KArray::GetServerIDByIQN()");
    RequireArgument(!hostIQN.empty(), "KArray::GetServerIDByIQN - Invalid input parameter");
    int status = KStatusNotFound;
    for (const KServer* server : serverList) {
        if (server != nullptr && IsUpToZero(*server->hostIQN, hostIQN)) {
            serverID = UpToZero(*server->serverID);
            status = KStatusSuccess;  // Kept: last-server-wins. The walk goes on.
        }
    }
    LogTrace("Exiting KArray::GetServerIDByIQN() with return code : %d", status);
    return status;
}

int KArray::GetServerIDByIQNFromArray(const std::string& hostIQN, std::string& serverID) {
    LogTrace("Entering KArray::GetServerIDByIQNFromArray()");
    RequireArgument(!hostIQN.empty(), "KArray::GetServerIDByIQNFromArray - Invalid input parameter");
    std::string iscsiIP;
    // The request writes into the caller's text before the server is recorded. Kept: identifier-despite-exception.
    int status = connection->GetServerInfoByIQN(hostIQN, serverID, iscsiIP);
    if (status == KStatusSuccess) {
        AppendOwned(serverList, std::make_unique<KServer>(serverID, hostIQN, iscsiIP));
    } else if (status == KStatusNotFound) {
        status = connection->CreateServer(hostIQN, hostIQN, iscsiIP, serverID);
        if (status == KStatusSuccess) {
            LogEvent("Successfully created server(%s) in the array", serverID);
            AppendOwned(serverList, std::make_unique<KServer>(serverID, hostIQN, iscsiIP));
        }
    }
    LogTrace("Exiting KArray::GetServerIDByIQNFromArray() with return code : %d", status);
    return status;
}

}  // namespace Korvel
