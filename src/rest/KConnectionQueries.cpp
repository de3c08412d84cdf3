#include "foundation/KBoundedText.h"
#include "foundation/KErrorHandling.h"
#include "foundation/KException.h"
#include "foundation/KLimits.h"
#include "foundation/KLog.h"
#include "rest/KConnection.h"
#include "rest/KRequest.h"

namespace Korvel {

int KConnection::GetVolumesList(std::list<KVolumeRecord>* volumeRecords) {
    LogTrace("Entering KConnection::GetVolumesList");
    std::string reply;
    KRequest request(reply);
    const int status = request.Run([&] {
        RequireArgument(volumeRecords != nullptr, "KConnection::GetVolumesList - Invalid input argument");
        Get(request, "/api/volumes");
        request.RequireOK("HTTP return code: %ld. List volume failed");
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
    std::string reply;
    KRequest request(reply);
    const int status = request.Run([&] {
        RequireArgument(!cgName.empty() && snapshotRecords != nullptr,
                        "KConnection::GetSnapshotsList - Invalid input argument");
        const KRequestText path("/api/consistency_groups/%s/snapshots", cgName);
        LogDetail("URL: %s", path.Text());
        Get(request, path.Text());
        request.RequireOK("HTTP return code: %ld. List snapshot failed");
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
    KRequest request(reply);
    return request.Run([&]() -> int {
        Get(request, path);
        request.RequireOK(failureText);
        return KStatusSuccess;
    });
}

// What a fetch or a reader throws is logged by both layers. Kept: errors-logged-per-layer.
int KConnection::GetVolumeInfoByDispName(const std::string& volDispName, std::string& volID, std::string& volName,
                                         std::string& cgName) {
    LogTrace("Entering KConnection::GetVolumeInfoByDispName for volume %s", volDispName);
    const auto fetchAndRead = [&] {
        std::string reply;
        const int fetched = ListVolumes(reply);
        return fetched == KStatusSuccess ? ParseVolumeXMLByName(reply, volDispName, volID, volName, cgName) : fetched;
    };
    const int status = LogAndRethrow(fetchAndRead, [] {});
    LogTrace("Exiting KConnection::GetVolumeInfoByDispName with return code %d", status);
    return status;
}

int KConnection::GetServerInfoByIQN(const std::string& hostIQN, std::string& serverID, std::string& iscsiIP) {
    LogTrace("Entering KConnection::GetServerInfoByIQN for host iqn %s", hostIQN);
    const auto fetchAndRead = [&] {
        std::string reply;
        const int fetched = ListServers(reply);
        return fetched == KStatusSuccess ? ParseServerXMLByIQN(reply, hostIQN, serverID, iscsiIP) : fetched;
    };
    const int status = LogAndRethrow(fetchAndRead, [] {});
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
    std::string reply;
    KRequest request(reply);
    const int status = request.Run([&] {
        const KRequestText url(KUrlFormat, arrayIP, "/api/drives");
        LogEvent("URL: %s", url.Text());
        request.handle = curl_easy_init();
        if (request.handle != nullptr) {
            KRequest::SetFrameOptions(request.handle, url.Text());
        }
        const KRequestText header(KAccessKeyHeaderFormat, accessKey);
        LogDetail("%s", header.Text());  // Kept: keys-in-the-log.
        request.headers = curl_slist_append(nullptr, header.Text());
        curl_easy_setopt(request.handle, CURLOPT_HTTPHEADER, request.headers);
        request.Perform();
        request.RequireOK("List drives failed");
        return ParseDriveList(reply);
    });
    LogTrace("Exiting KConnection::ListDrives with return code %d", status);
    return status;
}

}  // namespace Korvel
