#include "library/Listing.h"

#include <list>
#include <utility>

#include "library/Ask.h"
#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"
#include "rest/KConnection.h"
#include "text/ArgumentCheck.h"
#include "xml/KReplyDocument.h"
#include "xml/KSnapshotRecord.h"
#include "xml/KVolumeRecord.h"

// This file alone reaches below the public header. An empty listing is status 2, which leaves the lists empty.

namespace Korvel::Ctl {
namespace {

KConnection& ConnectionOf(KArray& array) {
    KConnection* connection = nullptr;
    array.GetConnection(connection);
    return *connection;
}

/// The array's own text goes into a path: one that does not fit would end the process.
void CheckGroup(KArray& array, const std::string& group) {
    try {
        CheckPath("group name", AddressOf(array), SnapshotListPath, group);
    } catch (const Failure& refusal) {
        throw Failure(ExitFailed,
                      "array " + AddressOf(array) + " cannot be asked for the snapshots of a group: " + refusal.what(),
                      AddressOf(array));
    }
}

}  // namespace

std::vector<Volume> ListVolumes(KArray& array) {
    std::list<KVolumeRecord> records;
    ConnectionOf(array).GetVolumesList(&records);
    std::vector<Volume> volumes;
    volumes.reserve(records.size());
    for (; !records.empty(); records.pop_front()) {  // one by one, so that the list never stands in memory twice
        KVolumeRecord& record = records.front();
        volumes.push_back({std::move(record.ieeeID), std::move(record.name), std::move(record.displayName),
                           std::move(record.cgName)});
    }
    return volumes;
}

std::vector<Snapshot> ListSnapshots(KArray& array, const std::string& group) {
    CheckGroup(array, group);
    std::list<KSnapshotRecord> records;
    ConnectionOf(array).GetSnapshotsList(group, &records);
    std::vector<Snapshot> snapshots;
    snapshots.reserve(records.size());
    for (KSnapshotRecord& record : records) {
        snapshots.push_back({group, std::move(record.name), std::move(record.displayName)});
    }
    return snapshots;
}

std::vector<Server> ListServers(KArray& array) {
    std::string reply;
    ConnectionOf(array).ListServers(reply);
    KReplyDocument document;
    document.Read(reply, "//servers/server");
    std::vector<Server> servers;
    for (const xmlNode* node : document.Nodes()) {
        Server& server = servers.emplace_back();
        const KField fields[] = {{"name", &server.id}, {"iqn", &server.iqn}, {"iscsi-ip", &server.address}};
        document.ReadFields(node, fields);
    }
    return servers;
}

std::optional<std::string> FindServer(KArray& array, const std::string& iqn) {
    std::string id;
    std::string address;
    const int status = ConnectionOf(array).GetServerInfoByIQN(iqn, id, address);
    return status == KStatusSuccess ? std::optional(id) : std::nullopt;
}

}  // namespace Korvel::Ctl
