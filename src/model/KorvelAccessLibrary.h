#pragma once

/// \file
/// The public interface of KorvelAccessLibrary: the access layer, the arrays it owns and the volumes they own.
///
/// Every operation returns a KStatus as an int unless it says otherwise. Results come back through reference arguments;
/// a pointer that is handed out points into an object that the library owns and stays valid until its owner is
/// destroyed. An empty text that an operation needs throws std::invalid_argument, and so does a null pointer where the
/// operation says so; any other pointer must not be null. A failure of the transport, the HTTP status, the array or the
/// registry throws KException. So does a lack of memory within libcurl or libxml2 that stops it at once; any other
/// throws std::bad_alloc. A failure leaves lists and arguments as they were, unless the operation says otherwise.
///
/// An exception does not mean that nothing happened: the array may have carried out a command whose reply was lost or
/// could not be read. Each command says what to look for.
///
/// Nothing here takes a lock: an access layer and all it owns belong to one thread at a time. Threads with an access
/// layer each may work at once.
///
/// A text that does not fit ends the process, because a request that was cut would reach the wrong thing: a URL
/// (https://, address and path) or an API path of more than KMaxUrlLength characters, an access key of more than
/// KMaxAccessKeyLength, an address in the registry of more than KMaxAddressLength. Check names before they get here.
///
/// Standard texts, lists and exceptions cross this interface: build the caller with the library's own compiler and
/// standard library; on Windows with its runtime, too (the MinGW-w64 DLL does not serve Visual Studio).
///
/// What looks wrong but is kept on purpose carries a name after "Kept:"; docs/kept-behaviour.md tells more.

#include <list>
#include <string>

#include "../foundation/KException.h"
#include "../foundation/KExport.h"
#include "../foundation/KLimits.h"
#include "../foundation/KStatus.h"

#if defined(_MSC_VER)
#pragma warning(push)
#pragma warning(disable : 4251)  // standard classes in an exported class: caller and library share one runtime
#endif

namespace Korvel {

class KArray;
class KVolume;

/// \name Types that callers can only pass on
/// Their declarations are the library's own: a caller gets a pointer from one operation and hands it to another.
/// @{
class KConnection;
class KServer;
class KSnapshot;
/// @}

/// The entry point: finds the arrays configured in the registry and owns them.
///
/// Copying and assigning are shallow: a copy holds the same arrays, and each destructor deletes every array in its own
/// list, so only one of the two may be destroyed. Kept: shallow-copies.
class KORVEL_API KAccessLayer {
public:
    /// Makes a layer without arrays.
    KAccessLayer();
    /// Shares all that the other owns.
    KAccessLayer(const KAccessLayer& other);
    /// Shares all that the other owns; what was owned before is forgotten, not freed.
    KAccessLayer& operator=(const KAccessLayer& other);

    /// Destroys every array of the layer with all they own.
    ~KAccessLayer();

    /// Prepares the process for requests. Call it once, before the first request and while no other thread runs one;
    /// not from a DLL's entry point.
    static void GlobalInit();

    /// Undoes GlobalInit. Call it once, after the last access layer is gone and the last request has ended: as long as
    /// an array that hangs keeps a thread, it has to wait.
    static void GlobalCleanup();

    /// Creates one array for every address configured in the registry. Addresses that are already present are not
    /// skipped; Refresh is the operation for a second look.
    /// @return 0, or 1 when the registry could not be read, a key is empty or memory lacks: `korvelctl config check`
    ///         names the cause, of which the log shows no more than that there is one. The arrays created before it
    ///         stay
    int DiscoverArrays();

    /// Adds an array for every address in the registry that no array of this layer has. Removes none and re-reads no
    /// key.
    /// @return as DiscoverArrays
    int Refresh();

    /// Replaces the contents of a list with the arrays of this layer, in the order of their creation.
    /// @param known receives pointers that stay the layer's own
    /// @return 0
    int GetArrays(std::list<KArray*>& known);

    /// Checks an address and access key by listing the array's drives. Needs no registry entry.
    /// @param arrayIP the address or host name; not changed
    /// @param accessKey the access key; not changed
    /// @return 0 when the array answered with a drive list, 1 when its reply held none
    /// @throws std::invalid_argument when either text is empty
    /// @throws KException when the array cannot be reached or answers with any HTTP status but 200 (a refused
    ///         key), or with 200 and a reply that is not XML
    int ValidateArray(std::string& arrayIP, std::string& accessKey);

private:
    std::list<KArray*> arrays;
};

/// One storage array: its connection, and the servers and volumes found on it so far.
///
/// The lookups come in pairs. The plain one searches memory and makes no request; its twin FromArray asks the array and
/// adds what it finds. The library never chains them: call the twin after the plain one has returned 2. A FromArray
/// lookup decides that nothing was found by testing its out-pointer, so pass it set to null.
///
/// Copying and assigning are shallow: both objects then own the same things, and only one may be destroyed.
/// Kept: shallow-copies.
class KORVEL_API KArray {
public:
    /// Makes an array with its connection; asks nothing of it.
    /// @param address the array's address or host name
    /// @param key the array's access key
    /// @throws std::invalid_argument when either is empty
    KArray(const std::string& address, const std::string& key);
    /// Shares all that the other owns.
    KArray(const KArray& other);
    /// Shares all that the other owns; what was owned before is forgotten, not freed.
    KArray& operator=(const KArray& other);

    /// Destroys the connection, the servers and the volumes.
    ~KArray();

    /// Hands out the array's connection, which stays the array's own. Returns 0.
    int GetConnection(KConnection*& ownConnection);

    /// Hands out the array's own address text, not a copy. Returns 0.
    int GetIPAddress(std::string*& ownAddress);

    /// Appends a volume and takes ownership of it. Null is accepted, and so is a second entry of one volume, which is
    /// then destroyed twice. Returns 0.
    int AddVolumeToList(KVolume* volume);

    /// Appends a server and takes ownership of it; otherwise as AddVolumeToList. Returns 0.
    int AddServerToList(KServer* server);

    /// Finds a known volume by its identifier.
    /// @param volID the volume's identifier, compared exactly
    /// @param volume receives the first match, owned by the array; unchanged on a miss
    /// @return 0, or 2 when no known volume matches
    /// @throws std::invalid_argument when the identifier is empty
    int GetVolumeByID(const std::string& volID, KVolume*& volume);

    /// Finds a volume on the array by its IEEE identifier and adds it to the known volumes.
    /// @param volID the IEEE identifier, compared exactly, the case of its digits too
    /// @param volume pass it null; receives the new volume, owned by the array; unchanged on a miss
    /// @return 0, or 2 when the array lists no such volume or no volume at all
    /// @throws std::invalid_argument when the identifier is empty or the array's record lacks a field
    /// @throws KException when the request fails
    int GetVolumeByIDFromArray(const std::string& volID, KVolume*& volume);

    /// Finds a known volume by its display name; otherwise as GetVolumeByID.
    int GetVolumeByDispName(const std::string& volDispName, KVolume*& volume);

    /// Finds a volume on the array by its display name; otherwise as GetVolumeByIDFromArray. The new volume's
    /// identifier is the array's product identifier, not the IEEE identifier. Kept: two-volume-identifiers.
    int GetVolumeByDispNameFromArray(const std::string& volDispName, KVolume*& volume);

    /// Finds the known volume that has a known snapshot; otherwise as GetVolumeByID.
    /// @param snapID the snapshot's identifier (its name on the array)
    /// @param volume as there
    int GetVolumeBySnapID(const std::string& snapID, KVolume*& volume);

    /// Finds the volume on the array whose consistency group has a snapshot, and records that snapshot for it;
    /// otherwise as GetVolumeByIDFromArray. Asks for the snapshots of one volume's group after the other.
    /// @param snapID the snapshot's identifier (its name on the array)
    /// @param volume as there
    /// @throws std::invalid_argument also when a volume listed before the match has no group
    int GetVolumeBySnapIDFromArray(const std::string& snapID, KVolume*& volume);

    /// Makes a new volume from a snapshot and adds it to the known volumes.
    /// @param cgID the consistency group's identifier
    /// @param snapID the snapshot's identifier
    /// @param volume receives the clone, owned by the array; unchanged on failure. Its identifier is the
    ///        IEEE identifier, its display name begins with the snapshot's identifier and ends in ".clone"
    /// @return 0; the status of the reply that held no answer; or 2 when the array has made the clone and does not list
    ///         it
    /// @throws std::invalid_argument when an argument is empty
    /// @throws KException when a request fails or the array refuses; its text is then the array's own message
    ///
    /// After an exception, and after any status but 0, the clone may exist on the array all the same, under a name that
    /// begins with the snapshot's identifier and ends in ".clone".
    int CloneVolume(const std::string& cgID, const std::string& snapID, KVolume*& volume);

    /// Maps a volume to a server.
    /// @param volName the volume's name on the array, not its display name
    /// @param serverID the array's identifier of the server, as GetServerIDByIQN gives it
    /// @return 0, or 1 when the reply held no answer
    /// @throws std::invalid_argument when an argument is empty
    /// @throws KException when the request fails or the array refuses
    ///
    /// After an exception the volume may be mapped all the same.
    int AttachVolume(const std::string& volName, const std::string& serverID);

    /// Unmaps a volume from a server; otherwise as AttachVolume. After an exception it may be unmapped all the same.
    int DetachVolume(const std::string& volName, const std::string& serverID);

    /// Deletes a volume on the array and forgets the first known volume of that name: pointers to it are then invalid.
    /// @param volName the volume's name on the array, not its display name
    /// @return 0, or 1 when the reply held no answer
    /// @throws std::invalid_argument when the name is empty
    /// @throws KException when the request fails or the array refuses
    ///
    /// After an exception the volume may be gone on the array all the same; it is then still known here.
    int DeleteVolume(const std::string& volName);

    /// Rolls a volume's consistency group back to a snapshot.
    /// @param snapID the snapshot's identifier
    /// @param volume the volume to roll back; not changed
    /// @return 0, or 1 when the reply held no answer
    /// @throws std::invalid_argument when the identifier is empty or the volume null
    /// @throws KException when the request fails or the array refuses
    ///
    /// After an exception the group may be rolled back all the same.
    int ResyncVolume(const std::string& snapID, KVolume* const& volume);

    /// Finds a known server by its initiator name. Of several, the last one counts. Kept: last-server-wins.
    /// @param hostIQN the iSCSI initiator name (IQN), compared exactly
    /// @param serverID receives the array's identifier of the server; unchanged on a miss
    /// @return 0, or 2 when no known server matches
    /// @throws std::invalid_argument when the initiator name is empty
    int GetServerIDByIQN(const std::string& hostIQN, std::string& serverID);

    /// Finds a server on the array by its initiator name, creates it there when it is missing, and adds it to the known
    /// servers.
    /// @param hostIQN the iSCSI initiator name (IQN), compared exactly
    /// @param serverID receives the array's identifier of the server
    /// @return 0, or 1 when a reply held no answer
    /// @throws std::invalid_argument when the initiator name is empty, the array has no server whose iSCSI address the
    ///         new one could take, or the array's reply names no server: that server then exists on the array, and
    ///         `serverID` is empty
    /// @throws KException when a request fails or the array refuses
    ///
    /// After an exception the server may exist on the array all the same, and `serverID` hold what the array answered.
    /// Kept: identifier-despite-exception.
    int GetServerIDByIQNFromArray(const std::string& hostIQN, std::string& serverID);

private:
    std::string* ipAddress;
    std::string* accessKey;
    KConnection* connection;
    std::list<KServer*> serverList;
    std::list<KVolume*> volumeList;
};

/// One volume of an array, with the snapshots of its consistency group that the library knows.
///
/// Copying and assigning are shallow: both objects then own the same things, and only one may be destroyed.
/// Kept: shallow-copies.
class KORVEL_API KVolume {
public:
    /// Makes a volume that belongs to no array yet.
    /// @param id the array's identifier of the volume
    /// @param name the volume's name on the array, which the commands take
    /// @param dispName the volume's display name
    /// @param group the identifier of the volume's consistency group
    /// @throws std::invalid_argument when one of them is empty
    KVolume(const std::string& id, const std::string& name, const std::string& dispName, const std::string& group);
    /// Shares all that the other owns.
    KVolume(const KVolume& other);
    /// Shares all that the other owns; what was owned before is forgotten, not freed.
    KVolume& operator=(const KVolume& other);

    /// Destroys the volume's snapshot objects; the array keeps its snapshots.
    ~KVolume();

    /// Takes one consistent set of snapshots, one for each pair of a volume and its consistency group.
    /// @param onArray the array that holds the volumes; not null, which is the caller's duty
    /// @param volNames the volumes' names on the array; neither changed nor kept
    /// @param cgNames the volumes' consistency groups in the same order; what has no partner in the other list is
    ///        ignored
    /// @param snapNames receives, at its end, the snapshot names that the array reports, also those of a set that the
    ///        array then calls failed, or that were read before an exception; not null, which is the caller's duty.
    ///        They come in the reply's order: nothing ties a name to its volume, nor is their number compared with that
    ///        of the pairs
    /// @return 0, or 1 when the reply held no answer
    /// @throws std::invalid_argument when a name of a pair is empty or null; nothing is sent then
    /// @throws KException when the request fails or the array refuses
    ///
    /// After an exception the snapshots may exist on the array all the same, under names that begin with "snap_" and
    /// end in the volume's name.
    static int CreateSnapshotSet(KArray* onArray, const std::list<std::string*>& volNames,
                                 const std::list<std::string*>& cgNames, std::list<std::string>* snapNames);

    /// Hands out the volume's own identifier text, not a copy. Returns 0.
    int GetVolumeID(std::string*& ownID);

    /// Copies the volume's name, up to its first zero byte. Returns 0.
    int GetVolumeName(std::string& name);

    /// Copies the display name, up to its first zero byte. Returns 0.
    int GetVolumeDispName(std::string& dispName);

    /// Copies the consistency group's identifier, up to its first zero byte. Returns 0.
    int GetCgID(std::string& group);

    /// Hands out the volume's own consistency group text, not a copy. Returns 0.
    int GetCgIDPtr(std::string*& ownGroup);

    /// Copies the identifier of the snapshot recorded last, up to its first zero byte; empty when none was. Returns 0.
    int GetLatestSnapshotID(std::string& snapID);

    /// Names the array that holds the volume; not owned. Returns 0.
    int SetArray(KArray* owner);

    /// Replaces the identifier of the latest snapshot. Returns 0.
    int SetLatestSnapshotID(const std::string& snapID);

    /// Appends a snapshot and takes ownership of it. Null is accepted, and so is a second entry of one snapshot, which
    /// is then destroyed twice. Returns 0.
    int AddSnapshotToList(KSnapshot* snapshot);

    /// Tells whether a snapshot is recorded for this volume, without asking the array.
    /// @param snapID the snapshot's identifier, compared exactly
    /// @return 0, or 2 when it is not
    int IsSnapAvailable(const std::string& snapID);

    /// Records a snapshot that was just created and makes it the latest. A second record of one snapshot is not
    /// refused.
    /// @param snapID the snapshot's identifier
    /// @return 0
    /// @throws std::invalid_argument when the identifier is empty
    int AddCreatedSnapshot(const std::string& snapID);

    /// Deletes a snapshot on the array and forgets the first record of it. The latest snapshot's identifier stays. The
    /// volume has to belong to an array.
    /// @param snapID the snapshot's identifier; not changed
    /// @return 0, or 1 when the reply held no answer
    /// @throws std::invalid_argument when the identifier is empty
    /// @throws KException when the request fails or the array refuses
    ///
    /// After an exception the snapshot may be gone on the array all the same; it is then still known here.
    int DeleteSnapshot(std::string& snapID);

private:
    friend class KArray;  // its searches compare where the texts lie

    std::string* volumeID;
    std::string* volumeName;
    std::string* volumeDispName;
    std::string* cgID;
    std::string* latestSnapshotID;
    KArray* array;
    std::list<KSnapshot*> snapshotList;
};

}  // namespace Korvel

#if defined(_MSC_VER)
#pragma warning(pop)
#endif
