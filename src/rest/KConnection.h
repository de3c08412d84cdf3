#pragma once

#include <curl/curl.h>

#include <initializer_list>
#include <list>
#include <string>

#include "foundation/KFormat.h"
#include "xml/CommandResponse.h"
#include "xml/KCommandAction.h"
#include "xml/KSnapshotRecord.h"
#include "xml/KVolumeRecord.h"

namespace Korvel {

class KRequest;

/// The library's only path to one array: one operation per request, and the readers of the replies.
///
/// A connection keeps nothing between requests; each makes and destroys its own libcurl handle. Unless an operation
/// says otherwise it returns the status of the reply's reader and throws std::invalid_argument for an empty or null
/// argument, and KException when the transport fails, the HTTP status is not 200, the reply is not XML or the array
/// refuses. What a request throws it has logged. Names go into paths and bodies as they stand, without any encoding.
class KConnection {
public:
    /// @param address the array's address or host name, the host of every URL
    /// @param key the array's access key
    /// @throws std::invalid_argument when either is empty
    KConnection(const std::string& address, const std::string& key);
    /// Frees the connection's copies of its texts.
    ~KConnection();
    KConnection(const KConnection&) = delete;
    KConnection& operator=(const KConnection&) = delete;

    /// Prepares libcurl and libxml2 for the process.
    static void GlobalInit();

    /// Undoes GlobalInit as far as libcurl goes; libxml2 is the process's.
    static void GlobalCleanup();

    /// Prepares a new handle for a request.
    /// @param handle receives the handle, the caller's to clean up; null when libcurl has none
    /// @param path the absolute API path, zero-terminated
    /// @param headers null; receives the header list, the caller's to free
    /// @return 0
    int InitializeCurl(CURL*& handle, const char* path, curl_slist*& headers);

    /// \name Queries
    /// @{

    /// Lists the array's volumes.
    /// @param volumeRecords the records are appended; not null
    /// @return 0, or 2 when the array has no volume
    int GetVolumesList(std::list<KVolumeRecord>* volumeRecords);

    /// Lists the snapshots of one consistency group.
    /// @param snapshotRecords the records are appended; not null
    /// @return 0, or 2 when the group has no snapshot
    int GetSnapshotsList(const std::string& cgName, std::list<KSnapshotRecord>* snapshotRecords);

    /// Fetches the volume listing, unread.
    /// @param reply the body is appended
    /// @return 0
    int ListVolumes(std::string& reply);

    /// Fetches the server listing, unread.
    /// @param reply the body is appended
    /// @return 0
    int ListServers(std::string& reply);

    /// Finds a volume on the array by its display name. The name is not checked.
    /// @param volID, volName, cgName receive the IEEE identifier, the name and the group; unchanged on a miss
    /// @return 0, or 2 when no volume has this name
    int GetVolumeInfoByDispName(const std::string& volDispName, std::string& volID, std::string& volName,
                                std::string& cgName);

    /// Finds a server on the array by its initiator name. The name is not checked.
    /// @param serverID receives the array's identifier of the server; unchanged on a miss
    /// @param iscsiIP receives the iSCSI address; on a miss the one read last, unchanged when no server is listed
    /// @return 0, or 2 when no server has this initiator name
    int GetServerInfoByIQN(const std::string& hostIQN, std::string& serverID, std::string& iscsiIP);

    /// @}
    /// \name Commands
    /// Each returns 0, or 1 when the reply held no response of its kind. An exception does not mean that the array did
    /// nothing: the reply may have been lost, or not been readable.
    /// @{

    /// Takes one snapshot of each volume in one consistent set, under generated names.
    /// @param volNames, cgNames the volumes' names and their groups, in the same order; the shorter list counts
    /// @param snapNames the names that the array reports are appended, and stay when it then refuses; not null
    int CreateSnapshotSet(const std::list<std::string*>& volNames, const std::list<std::string*>& cgNames,
                          std::list<std::string>* snapNames);

    /// Deletes a snapshot by its identifier.
    int DeleteSnapshot(const std::string& snapID);

    /// Makes a volume from a snapshot of a group.
    /// @param cgName receives, on success, the name that the reply's action reads, which is none: it is emptied
    int CloneVolume(const std::string& cgID, const std::string& snapID, const std::string& cloneName,
                    std::string& cgName);

    /// Deletes a volume by its name.
    int DeleteVolume(const std::string& volName);

    /// Rolls a group back to a snapshot.
    int ResyncVolume(const std::string& snapID, const std::string& cgID);

    /// Registers a host with the array.
    /// @param serverID receives the new server's identifier; unchanged on failure
    int CreateServer(const std::string& displayName, const std::string& hostIQN, const std::string& iscsiIP,
                     std::string& serverID);

    /// Maps a volume, by its name, to a server, by its identifier.
    int AttachVolume(const std::string& volName, const std::string& serverID);

    /// Unmaps a volume from a server.
    int DetachVolume(const std::string& volName, const std::string& serverID);

    /// @}
    /// \name Array validation
    /// @{

    /// Checks an address and key by listing the drives, and logs the outcome.
    static int ValidateArray(const std::string& arrayIP, const std::string& accessKey);

    /// Lists the drives of the array at an address.
    /// @return 0, or 1 when the reply held no drive list
    static int ListDrives(const std::string& arrayIP, const std::string& accessKey);

    /// @}
    /// \name The readers
    /// Each takes the whole body of a reply. They throw KException when it is not well-formed XML.
    /// @{

    /// Finds a volume by its display name; see GetVolumeInfoByDispName.
    int ParseVolumeXMLByName(const std::string& reply, const std::string& volDispName, std::string& volID,
                             std::string& volName, std::string& cgName);
    /// Reads the volume listing; see GetVolumesList.
    int ParseVolumeList(const std::string& reply, std::list<KVolumeRecord>* volumeRecords);
    /// Finds a server by its initiator name; see GetServerInfoByIQN.
    int ParseServerXMLByIQN(const std::string& reply, const std::string& hostIQN, std::string& serverID,
                            std::string& iscsiIP);

    /// Reads the answer to a command.
    /// @param xPathID the XPath expression of the response element, zero-terminated
    /// @param CommandAction what to read besides the status: a KCommandAction; other values read nothing more
    /// @return 0 when there is such an element, whatever its status says, otherwise 1
    int ParseResponseXML(const std::string& reply, const char* xPathID, int CommandAction, CommandResponse& response);

    /// Reads the snapshot listing of a group; see GetSnapshotsList.
    int ParseSnapshotList(const std::string& reply, std::list<KSnapshotRecord>* snapshotRecords);
    /// Tells whether a reply is a drive list; see ListDrives.
    static int ParseDriveList(const std::string& reply);

    /// @}

private:
    KRequest Prepare(const char* path);
    int FetchListing(const char* path, KPartialFormat<long> failureText, std::string& reply);
    int Exchange(KCommandAction action, std::initializer_list<const std::string*> arguments, CommandResponse& response);
    int RunCommand(KCommandAction action, std::initializer_list<const std::string*> arguments, std::string* name);

    std::string* arrayIP;
    std::string* accessKey;
};

}  // namespace Korvel
