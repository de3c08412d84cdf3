#include "rest/KCommand.h"

#include <iterator>

namespace Korvel {

namespace {

// Kept: mismatched-replies. The rollback is read under the clone's element.
constexpr KCommand commands[] = {
    {
        // (the body: the operation makes it of its lists and checks each pair)
        .action = KCommandCreateSnapshotSet,
        .arguments = 1,
        .entryLine = "Entering KConnection::CreateSnapshotSet for volumes %s",
        .entryArgument = 0,
        .invalidArgument = "KConnection::CreateSnapshotSet - Invalid input argument",
        .method = "POST",
        .path = "/api/snapshots/snapshots_set",
        .pathArgument = 0,
        .body = "{0}",
        .xPathID = "//create-snapshot-set-response",
        .failureText = "HTTP return code: %ld. Create snapshot set failed",
        .exitLine = "Exiting KConnection::CreateSnapshotSet with return code %d",
    },
    {
        // (snapID)
        .action = KCommandDeleteSnapshot,
        .arguments = 1,
        .entryLine = "Entering KConnection::DeleteSnapshot for snapshot %s",
        .entryArgument = 0,
        .invalidArgument = "KConnection::DeleteSnapshot - Invalid input argument",
        .method = "DELETE",
        .path = "/api/snapshots/%s",
        .pathArgument = 0,
        .body = nullptr,
        .xPathID = "//delete-snapshot-response",
        .failureText = "HTTP return code: %ld. Delete snapshot failed",
        .exitLine = "Exiting KConnection::DeleteSnapshot with return code %d",
    },
    {
        // (displayName, hostIQN, iscsiIP)
        .action = KCommandCreateServer,
        .arguments = 3,
        .entryLine = "Entering KConnection::CreateServer for host iqn %s",
        .entryArgument = 1,
        .invalidArgument = "KConnection::CreateServer - Invalid input argument",
        .method = "POST",
        .path = "/api/servers",
        .pathArgument = 0,
        .body = "display_name={0}&iscsi={2}&iqn={1}&ipsec=no&force=no",
        .xPathID = "//create-server-response",
        .failureText = "HTTP return code: %ld. Create server failed",
        .exitLine = "Exiting KConnection::CreateServer with return code %d",
    },
    {
        // (cgID, snapID, cloneName)
        .action = KCommandCloneVolume,
        .arguments = 3,
        .entryLine = "Entering KConnection::CloneVolume for volume %s",
        .entryArgument = 1,
        .invalidArgument = "KConnection::CloneVolume - Invalid input argument",
        .method = "POST",
        .path = "/api/consistency_groups/%s/clone",
        .pathArgument = 0,
        .body = "snapshot={1}&name={2}&timeout=30",
        .xPathID = "//clone-cg-response",
        .failureText = "HTTP return code: %ld. Clone volume failed",
        .exitLine = "Exiting KConnection::CloneVolume with return code %d",
    },
    {
        // (volName, serverID)
        .action = KCommandAttachVolume,
        .arguments = 2,
        .entryLine = "Entering KConnection::AttachVolume for volName %s",
        .entryArgument = 0,
        .invalidArgument = "KConnection::AttachVolume - Invalid input argument",
        .method = "POST",
        .path = "/api/servers/%s/volumes",
        .pathArgument = 1,
        .body = "id={1}&volume_name={0}&readonly=no&force=no",
        .xPathID = "//attach-volume-response",
        .failureText = "HTTP return code: %ld. Attach volume failed",
        .exitLine = "Exiting KConnection::AttachVolume with return code %d",
    },
    {
        // (volName, serverID)
        .action = KCommandDetachVolume,
        .arguments = 2,
        .entryLine = "Entering KConnection::DetachVolume for volName %s",
        .entryArgument = 0,
        .invalidArgument = "KConnection::DetachVolume - Invalid input argument",
        .method = "POST",
        .path = "/api/volumes/%s/detach",
        .pathArgument = 0,
        .body = "servers={1}",
        .xPathID = "//detach-volume-response",
        .failureText = "HTTP return code: %ld. Detach volume failed",
        .exitLine = "Exiting KConnection::DetachVolume with return code %d",
    },
    {
        // (volName)
        .action = KCommandDeleteVolume,
        .arguments = 1,
        .entryLine = "Entering KConnection::DeleteVolume for volName %s",
        .entryArgument = 0,
        .invalidArgument = "KConnection::DeleteVolume - Invalid input argument",
        .method = "DELETE",
        .path = "/api/volumes/%s",
        .pathArgument = 0,
        .body = nullptr,
        .xPathID = "//delete-volume-response",
        .failureText = "HTTP return code: %ld. Delete volume failed",
        .exitLine = "Exiting KConnection::DeleteVolume with return code %d",
    },
    {
        // (snapID, cgID)
        .action = KCommandResyncVolume,
        .arguments = 2,
        .entryLine = "Entering KConnection::ResyncVolume with snapID %s",
        .entryArgument = 0,
        .invalidArgument = "KConnection::ResyncVolume - Invalid input argument",
        .method = "POST",
        .path = "/api/consistency_groups/%s/rollback",
        .pathArgument = 1,
        .body = "snapname={0}&timeout=30",
        .xPathID = "//clone-cg-response",
        .failureText = "HTTP return code: %ld. Resync volume failed",
        .exitLine = "Exiting KConnection::ResyncVolume with return code %d",
    },
};

/// Tells whether a body fills in only arguments that there are.
constexpr bool FillsInItsArguments(const char* body, std::size_t arguments) {
    for (const char* at = body == nullptr ? "" : body; *at != '\0'; ++at) {
        if (*at == '{' && (at[1] < '0' || static_cast<std::size_t>(at[1] - '0') >= arguments || at[2] != '}')) {
            return false;
        }
    }
    return true;
}

constexpr bool IsSound(const KCommand& command) {
    return command.invalidArgument != nullptr && command.method != nullptr && command.xPathID != nullptr &&
           command.entryArgument < command.arguments && command.pathArgument < command.arguments &&
           FillsInItsArguments(command.body, command.arguments);
}

constexpr bool AreSoundAndInOrder() {
    for (std::size_t row = 0; row < std::size(commands); ++row) {
        if (static_cast<std::size_t>(commands[row].action) != row || !IsSound(commands[row])) {
            return false;
        }
    }
    return std::size(commands) == KCommandResyncVolume + 1;
}

static_assert(AreSoundAndInOrder(),
              "a command's row is out of its place, lacks a text or names an argument that the operation lacks");

}  // namespace

const KCommand& CommandOf(KCommandAction action) {
    return commands[action];
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
