#include <utility>

#include "foundation/KErrorHandling.h"
#include "foundation/KFormat.h"
#include "foundation/KLog.h"
#include "foundation/KStatus.h"
#include "rest/KConnection.h"
#include "xml/CommandResponse.h"
#include "xml/KCommandAction.h"
#include "xml/KReplyDocument.h"
#include "xml/KSnapshotRecord.h"
#include "xml/KVolumeRecord.h"

namespace Korvel {

namespace {

/// What sets one reader apart from the others before it reads a node.
struct KReader {
    const char* expression;
    const char* emptyLine;  ///< the event when the expression selects nothing
    KStatus emptyStatus;
    bool exitLineWhenEmpty;  ///< Kept: missing-exit-lines.
    KFormat<int> exitLine;
};

constexpr KReader volumeByName{"//volumes/volume", "No volume found in the array", KStatusNotFound, false,
                               "Exiting KConnection::ParseVolumeXMLByName with return code %d"};
constexpr KReader volumeList{"//volumes/volume", "No volume found in the array", KStatusNotFound, false,
                             "Exiting KConnection::ParseVolumeList with return code %d"};
constexpr KReader serverByIQN{"//servers/server", "No servers matching the host iqn found in the array",
                              KStatusNotFound, false, "Exiting KConnection::ParseServerXMLByIQN with return code %d"};
constexpr KReader snapshotList{"//snapshots/snapshot", "No snapshots found in the array", KStatusNotFound, false,
                               "Exiting KConnection::ParseSnapshotList with return code %d"};
constexpr KReader driveList{"//show-disks-response/status", "No response for disk list received", KStatusFailure, true,
                            "Exiting KConnection::ParseDriveList with return code %d"};

/// The reply frame: reads the reply, hands its document to `walk` when the expression selects something, and writes
/// the exit line.
/// @return the status of `walk`, or the reader's status for an empty result
template <typename Walk>
int ReadReply(const std::string& reply, const KReader& reader, Walk walk) {
    bool empty = false;
    const int status = LogAndRethrow([&]() -> int {
        KReplyDocument document;
        document.Read(reply, reader.expression);
        empty = document.Nodes().empty();
        if (empty) {
            LogEvent("%s", reader.emptyLine);
            return reader.emptyStatus;
        }
        return walk(std::as_const(document));
    });
    if (!empty || reader.exitLineWhenEmpty) {
        LogTrace(reader.exitLine, status);
    }
    return status;
}

/// Reads the text of a response's element into a field and shows it in the log.
void ReadResponseField(const KReplyDocument& document, const xmlNode* element, std::string& field) {
    document.ReadText(element, field);
    LogDetail("%s: %s", reinterpret_cast<const char*>(element->name), field);
}

/// @return the element that a command's reply is asked for besides its status; null when there is none, and for a
/// number
///         that is no command
const char* NameElementOf(int action) {
    switch (action) {
        case KCommandCreateServer:
            return "server-name";
        case KCommandDeleteVolume:
            return "snapshot-name";  // Kept: mismatched-replies. Nobody takes it, nor the rollback's.
        case KCommandResyncVolume:
            return "cg-name";
        default:
            return nullptr;
    }
}

void AppendSnapshotNames(const KReplyDocument& document, const xmlNode* snapshots, std::list<std::string>& names) {
    for (const xmlNode* child = snapshots->children; child != nullptr; child = child->next) {
        if (child->type != XML_ELEMENT_NODE || !IsNamed(child, "snapshot")) {
            continue;
        }
        std::string name;
        document.ReadText(child, name);
        names.push_back(std::move(name));
        LogDetail("%s: %s", "snapshot", names.back());
    }
}

void ReadResponseElement(const KReplyDocument& document, const xmlNode* element, int action,
                         CommandResponse& response) {
    if (IsNamed(element, "status")) {
        ReadResponseField(document, element, response.status);
    }
    if (IsNamed(element, "status-msg")) {
        ReadResponseField(document, element, response.statusMsg);
    }
    if (action == KCommandCreateSnapshotSet) {
        if (IsNamed(element, "snapshots")) {
            AppendSnapshotNames(document, element, *response.snapshotNames);
        }
    } else if (const char* nameElement = NameElementOf(action);
               nameElement != nullptr && IsNamed(element, nameElement)) {
        ReadResponseField(document, element, response.name);
    }
}

}  // namespace

int KConnection::ParseVolumeXMLByName(const std::string& reply, const std::string& volDispName, std::string& volID,
                                      std::string& volName, std::string& cgName) {
    // Kept: wrong-entry-text. The line shows the output, not the name that is looked for.
    LogTrace("Entering KConnection::ParseVolumeXMLByName for volume %s", volID);
    return ReadReply(reply, volumeByName, [&](const KReplyDocument& document) -> int {
        KVolumeRecord working;  // Kept: carried-over-texts. Not cleared between volumes.
        const KField fields[] = {{"ieee-id", &working.ieeeID},
                                 {"name", &working.name},
                                 {"display-name", &working.displayName},
                                 {"cg-name", &working.cgName}};
        for (const xmlNode* node : document.Nodes()) {
            document.ReadFields(node, fields);
            if (volDispName == working.displayName) {
                volID.swap(working.ieeeID);
                volName.swap(working.name);
                cgName.swap(working.cgName);
                LogEvent("volID: %s, volDispName: %s, volName: %s, cgName: %s", volID, volDispName, volName, cgName);
                return KStatusSuccess;
            }
        }
        return KStatusNotFound;
    });
}

int KConnection::ParseVolumeList(const std::string& reply, std::list<KVolumeRecord>* volumeRecords) {
    LogTrace("Entering KConnection::ParseVolumeList");
    return ReadReply(reply, volumeList, [&](const KReplyDocument& document) -> int {
        for (const xmlNode* node : document.Nodes()) {
            std::list<KVolumeRecord> next(1);
            KVolumeRecord& record = next.front();
            const KField fields[] = {{"product-id", &record.productID, true},
                                     {"ieee-id", &record.ieeeID},
                                     {"name", &record.name},
                                     {"display-name", &record.displayName},
                                     {"cg-name", &record.cgName}};
            document.ReadFields(node, fields);
            record.productID = record.productID.substr(0, record.productID.find('-'));
            volumeRecords->splice(volumeRecords->end(), next);  // whole, or not at all
        }
        return KStatusSuccess;
    });
}

int KConnection::ParseServerXMLByIQN(const std::string& reply, const std::string& hostIQN, std::string& serverID,
                                     std::string& iscsiIP) {
    LogTrace("Entering KConnection::ParseServerXMLByIQN for hostIQN %s", hostIQN);
    return ReadReply(reply, serverByIQN, [&](const KReplyDocument& document) -> int {
        std::string name;  // Kept: carried-over-texts. Not cleared between servers.
        std::string iqn;
        std::string address;
        const KField fields[] = {{"name", &name}, {"iqn", &iqn}, {"iscsi-ip", &address}};
        for (const xmlNode* node : document.Nodes()) {
            document.ReadFields(node, fields);
            iscsiIP = address;  // Kept: address-of-the-last-server. Also when nothing matches.
            if (hostIQN == iqn) {
                serverID.swap(name);
                LogEvent("serverID: %s, hostIQN: %s, iscsiIP: %s", serverID, hostIQN, iscsiIP);
                return KStatusSuccess;
            }
        }
        return KStatusNotFound;
    });
}

int KConnection::ParseResponseXML(const std::string& reply, const char* xPathID, int CommandAction,
                                  CommandResponse& response) {
    LogTrace("Entering KConnection::ParseResponseXML with xPathID: %s CommandAction: %d", xPathID, CommandAction);
    const KReader reader{xPathID, "Response not found. Error Condition", KStatusFailure, false,
                         "Exiting KConnection::ParseResponseXML with return code %d"};
    return ReadReply(reply, reader, [&](const KReplyDocument& document) -> int {
        for (const xmlNode* node : document.Nodes()) {
            if (node->type == XML_NAMESPACE_DECL) {  // no node behind the pointer: it has no children
                continue;
            }
            for (const xmlNode* child = node->children; child != nullptr; child = child->next) {
                if (child->type == XML_ELEMENT_NODE) {
                    ReadResponseElement(document, child, CommandAction, response);
                }
            }
        }
        return KStatusSuccess;
    });
}

int KConnection::ParseSnapshotList(const std::string& reply, std::list<KSnapshotRecord>* snapshotRecords) {
    LogTrace("Entering KConnection::ParseSnapshotList");
    return ReadReply(reply, snapshotList, [&](const KReplyDocument& document) -> int {
        for (const xmlNode* node : document.Nodes()) {
            KSnapshotRecord record;
            const KField fields[] = {{"name", &record.name}, {"display-name", &record.displayName}};
            document.ReadFields(node, fields);
            snapshotRecords->push_back(std::move(record));
        }
        return KStatusSuccess;
    });
}

int KConnection::ParseDriveList(const std::string& reply) {
    LogTrace("Entering KConnection::ParseDriveList");
    // Finding a status is the whole answer; what it says is not looked at. Kept: drive-status-unread.
    return ReadReply(reply, driveList, [](const KReplyDocument&) -> int { return KStatusSuccess; });
}

}  // namespace Korvel
