#include "rest/KCommand.h"

#include <iterator>

namespace Korvel {

namespace {

// The rows stand in the order of KCommandAction.
// Kept: mismatched-replies. The rollback is read under the clone's element and asks for a group name that nobody takes,
// the clone asks for no name, the volume deletion for a snapshot's.
constexpr KCommand commands[] = {
    {
        // (the body: the operation makes it of its lists and checks each pair)
        .entryLine = "Entering KConnection::CreateSnapshotSet for volumes %s",
        .entryArgument = 0,
        .invalidArgument = "KConnection::CreateSnapshotSet - Invalid input argument",
        .method = "POST",
        .path = "/api/snapshots/snapshots_set",
        .pathArgument = 0,
        .body = "{0}",
        .xPathID = "//create-snapshot-set-response",
        .nameElement = nullptr,
        .failureText = "HTTP return code: %ld. Create snapshot set failed",
        .exitLine = "Exiting KConnection::CreateSnapshotSet with return code %d",
    },
    {
        // (snapID)
        .entryLine = "Entering KConnection::DeleteSnapshot for snapshot %s",
        .entryArgument = 0,
        .invalidArgument = "KConnection::DeleteSnapshot - Invalid input argument",
        .method = "DELETE",
        .path = "/api/snapshots/%s",
        .pathArgument = 0,
        .body = nullptr,
        .xPathID = "//delete-snapshot-response",
        .nameElement = nullptr,
        .failureText = "HTTP return code: %ld. Delete snapshot failed",
        .exitLine = "Exiting KConnection::DeleteSnapshot with return code %d",
    },
    {
        // (displayName, hostIQN, iscsiIP)
        .entryLine = "Entering KConnection::CreateServer for host iqn %s",
        .entryArgument = 1,
        .invalidArgument = "KConnection::CreateServer - Invalid input argument",
        .method = "POST",
        .path = "/api/servers",
        .pathArgument = 0,
        .body = "display_name={0}&iscsi={2}&iqn={1}&ipsec=no&force=no",
        .xPathID = "//create-server-response",
        .nameElement = "server-name",
        .failureText = "HTTP return code: %ld. Create server failed",
        .exitLine = "Exiting KConnection::CreateServer with return code %d",
    },
    {
        // (cgID, snapID, cloneName)
        .entryLine = "Entering KConnection::CloneVolume for volume %s",
        .entryArgument = 1,
        .invalidArgument = "KConnection::CloneVolume - Invalid input argument",
        .method = "POST",
        .path = "/api/consistency_groups/%s/clone",
        .pathArgument = 0,
        .body = "snapshot={1}&name={2}&timeout=30",
        .xPathID = "//clone-cg-response",
        .nameElement = nullptr,
        .failureText = "HTTP return code: %ld. Clone volume failed",
        .exitLine = "Exiting KConnection::CloneVolume with return code %d",
    },
    {
        // (volName, serverID)
        .entryLine = "Entering KConnection::AttachVolume for volName %s",
        .entryArgument = 0,
        .invalidArgument = "KConnection::AttachVolume - Invalid input argument",
        .method = "POST",
        .path = "/api/servers/%s/volumes",
        .pathArgument = 1,
        .body = "id={1}&volume_name={0}&readonly=no&force=no",
        .xPathID = "//attach-volume-response",
        .nameElement = nullptr,
        .failureText = "HTTP return code: %ld. Attach volume failed",
        .exitLine = "Exiting KConnection::AttachVolume with return code %d",
    },
    {
        // (volName, serverID)
        .entryLine = "Entering KConnection::DetachVolume for volName %s",
        .entryArgument = 0,
        .invalidArgument = "KConnection::DetachVolume - Invalid input argument",
        .method = "POST",
        .path = "/api/volumes/%s/detach",
        .pathArgument = 0,
        .body = "servers={1}",
        .xPathID = "//detach-volume-response",
        .nameElement = nullptr,
        .failureText = "HTTP return code: %ld. Detach volume failed",
        .exitLine = "Exiting KConnection::DetachVolume with return code %d",
    },
    {
        // (volName)
        .entryLine = "Entering KConnection::DeleteVolume for volName %s",
        .entryArgument = 0,
        .invalidArgument = "KConnection::DeleteVolume - Invalid input argument",
        .method = "DELETE",
        .path = "/api/volumes/%s",
        .pathArgument = 0,
        .body = nullptr,
        .xPathID = "//delete-volume-response",
        .nameElement = "snapshot-name",
        .failureText = "HTTP return code: %ld. Delete volume failed",
        .exitLine = "Exiting KConnection::DeleteVolume with return code %d",
    },
    {
        // (snapID, cgID)
        .entryLine = "Entering KConnection::ResyncVolume with snapID %s",
        .entryArgument = 0,
        .invalidArgument = "KConnection::ResyncVolume - Invalid input argument",
        .method = "POST",
        .path = "/api/consistency_groups/%s/rollback",
        .pathArgument = 1,
        .body = "snapname={0}&timeout=30",
        .xPathID = "//clone-cg-response",
        .nameElement = "cg-name",
        .failureText = "HTTP return code: %ld. Resync volume failed",
        .exitLine = "Exiting KConnection::ResyncVolume with return code %d",
    },
};

}  // namespace

const KCommand& CommandOf(KCommandAction action) {
    return commands[action];
}

const char* NameElementOf(int action) {
    return action >= 0 && action < static_cast<int>(std::size(commands)) ? commands[action].nameElement : nullptr;
}

std::string FillBody(const char* body, std::initializer_list<const std::string*> arguments) {
    std::string filled;
    for (const char* at = body == nullptr ? "" : body; *at != '\0'; ++at) {
        if (*at == '{') {
            filled += *arguments.begin()[at[1] - '0'];
            at += 2;  // the digit and the brace that closes
        } else {
            filled += *at;
        }
    }
    return filled;
}

}  // namespace Korvel
