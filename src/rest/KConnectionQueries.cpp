#include "foundation/KBoundedText.h"
#include "foundation/KErrorHandling.h"
#include "foundation/KFormat.h"
#include "foundation/KLimits.h"
#include "foundation/KLog.h"
#include "foundation/KStatus.h"
#include "rest/KConnection.h"
#include "rest/KRequest.h"
#include "xml/KSnapshotRecord.h"
#include "xml/KVolumeRecord.h"

namespace Korvel {

int KConnection::GetVolumesList(std::list<KVolumeRecord>* volumeRecords) {
    LogTrace("Entering KConnection::GetVolumesList");
    const int status = LogAndRethrow([&] {
        RequireArgument(volumeRecords != nullptr, "KConnection::GetVolumesList - Invalid input argument");
        std::string reply;
        const KRequest request = Prepare("/api/volumes");
        request.Perform(reply, "HTTP return code: %ld. List volume failed");
        const int parsed = ParseVolumeList(reply, volumeRecords);
        if (parsed == KStatusSuccess) {
            LogDetail("Successfully obtained volume list");
        }
        return parsed;
    });
    LogTrace("Exiting KConnection::GetVolumesList with return code %d", status);
    return status;
}

int KConnection::GetSnapshotsList(const std::string& cgName, std::list<KSnapshotRecord>* snapshotRecords) {
    LogTrace("Entering KConnection::GetSnapshotsList");
    const int status = LogAndRethrow([&] {
        RequireArgument(!cgName.empty() && snapshotRecords != nullptr,
                        "KConnection::GetSnapshotsList - Invalid input argument");
        const KRequestText path("/api/consistency_groups/%s/snapshots", cgName);
        LogDetail("URL: %s", path.Text());
        std::string reply;
        const KRequest request = Prepare(path.Text());
        request.Perform(reply, "HTTP return code: %ld. List snapshot failed");
        const int parsed = ParseSnapshotList(reply, snapshotRecords);
        if (parsed == KStatusSuccess) {
            LogDetail("Successfully obtained snapshot list");
        }
        return parsed;
    });
    LogTrace("Exiting KConnection::GetSnapshotsList with return code %d", status);
    return status;
}

// The two raw fetches say what failed without the response code. Kept: codeless-failures.
int KConnection::ListVolumes(std::string& reply) {
    LogTrace("Entering KConnection::ListVolumes");
    const int status = FetchListing("/api/volumes", "List volume failed", reply);
    LogTrace("Exiting KConnection::ListVolumes with return code %d", status);
    return status;
}

int KConnection::ListServers(std::string& reply) {
    LogTrace("Entering KConnection::ListServers");
    const int status = FetchListing("/api/servers", "List servers failed", reply);
    LogTrace("Exiting KConnection::ListServers with return code %d", status);
    return status;
}

int KConnection::FetchListing(const char* path, KPartialFormat<long> failureText, std::string& reply) {
    return LogAndRethrow([&]() -> int {
        const KRequest request = Prepare(path);
        request.Perform(reply, failureText);
        return KStatusSuccess;
    });
}

// What a fetch or a reader throws is logged by both layers. Kept: errors-logged-per-layer.
int KConnection::GetVolumeInfoByDispName(const std::string& volDispName, std::string& volID, std::string& volName,
                                         std::string& cgName) {
    LogTrace("Entering KConnection::GetVolumeInfoByDispName for volume %s", volDispName);
    const int status = LogAndRethrow([&] {
        std::string reply;
        const int fetched = ListVolumes(reply);
        return fetched == KStatusSuccess ? ParseVolumeXMLByName(reply, volDispName, volID, volName, cgName) : fetched;
    });
    LogTrace("Exiting KConnection::GetVolumeInfoByDispName with return code %d", status);
    return status;
}

int KConnection::GetServerInfoByIQN(const std::string& hostIQN, std::string& serverID, std::string& iscsiIP) {
    LogTrace("Entering KConnection::GetServerInfoByIQN for host iqn %s", hostIQN);
    const int status = LogAndRethrow([&] {
        std::string reply;
        const int fetched = ListServers(reply);
        return fetched == KStatusSuccess ? ParseServerXMLByIQN(reply, hostIQN, serverID, iscsiIP) : fetched;
    });
    LogTrace("Exiting KConnection::GetServerInfoByIQN with return code %d", status);
    return status;
}

int KConnection::ValidateArray(const std::string& arrayIP, const std::string& accessKey) {
    LogTrace("Entering KConnection::ValidateArray for arrayIP: %s accessKey: %s", arrayIP, accessKey);
    const int status = ListDrives(arrayIP, accessKey);
    if (status == KStatusSuccess) {
        LogEvent("List disks successfull.");  // Kept: misspelt-success.
    } else {
        LogError("List disk failed. Invalid array credentials");
    }
    LogTrace("Exiting KConnection::ValidateArray with return code %d", status);
    return status;
}

// The drive listing needs no connection and so no InitializeCurl; it has its own levels for the lines it shares.
int KConnection::ListDrives(const std::string& arrayIP, const std::string& accessKey) {
    LogTrace("Entering KConnection::ListDrives");
    const int status = LogAndRethrow([&] {
        const KRequestText url(KUrlFormat, arrayIP, "/api/drives");
        LogEvent("URL: %s", url.Text());
        CURL* const handle = curl_easy_init();
        if (handle != nullptr) {
            KRequest::SetFrameOptions(handle, url.Text());
        }
        const KRequestText header(KAccessKeyHeaderFormat, accessKey);
        LogDetail("%s", header.Text());  // Kept: keys-in-the-log.
        curl_slist* const headers = curl_slist_append(nullptr, header.Text());
        curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers);
        std::string reply;
        const KRequest request(handle, headers);
        request.Perform(reply, "List drives failed");
        return ParseDriveList(reply);
    });
    LogTrace("Exiting KConnection::ListDrives with return code %d", status);
    return status;
}

}  // namespace Korvel
