#include <algorithm>
#include <iterator>
#include <list>
#include <memory>
#include <utility>

#include "foundation/KErrorHandling.h"
#include "foundation/KLog.h"
#include "foundation/KText.h"
#include "model/KOwnedList.h"
#include "model/KSnapshot.h"
#include "model/KorvelAccessLibrary.h"
#include "rest/KConnection.h"
#include "xml/KSnapshotRecord.h"
#include "xml/KVolumeRecord.h"

namespace Korvel {

namespace {

/// Searches the known volumes from the front.
/// @return 0 with `volume` set to the first match, or 2 with `volume` as it was
template <typename Matches>
int FindKnownVolume(const std::list<KVolume*>& volumes, KVolume*& volume, Matches matches) {
    const auto found = std::find_if(volumes.begin(), volumes.end(),
                                    [&](KVolume* candidate) { return candidate != nullptr && matches(*candidate); });
    if (found == volumes.end()) {
        return KStatusNotFound;
    }
    volume = *found;
    return KStatusSuccess;
}

/// Fetches the array's volume listing and searches it from the front.
/// @return the first match, or null; `status` becomes that of the request
template <typename Matches>
const KVolumeRecord* FetchMatchingRecord(KConnection& connection, std::list<KVolumeRecord>& records, int& status,
                                         Matches matches) {
    status = connection.GetVolumesList(&records);
    if (status != KStatusSuccess) {
        return nullptr;
    }
    const auto found = std::find_if(records.begin(), records.end(), matches);
    return found == records.end() ? nullptr : &*found;
}

/// Fetches the snapshots of one volume's group and tells whether the wanted one is among them.
///
/// The list gathers the groups asked so far. What was compared for an earlier group did not match and cannot match now,
/// so only what this reply appended is compared.
bool GroupHasSnapshot(KConnection& connection, const std::string& cgName, const std::string& snapID,
                      std::list<KSnapshotRecord>& records, int& status) {
    const auto compared = records.empty() ? records.end() : std::prev(records.end());
    status = connection.GetSnapshotsList(cgName, &records);
    if (status != KStatusSuccess) {
        return false;
    }
    const auto appended = compared == records.end() ? records.begin() : std::next(compared);
    return std::any_of(appended, records.end(), [&](const KSnapshotRecord& record) { return record.name == snapID; });
}

/// Creates a volume from the array's record of it.
std::unique_ptr<KVolume> CreateVolume(KArray* array, const std::string& volID, const KVolumeRecord& record) {
    auto volume = std::make_unique<KVolume>(volID, record.name, record.displayName, record.cgName);
    volume->SetArray(array);
    return volume;
}

/// Records a snapshot for a volume that was found by it. Kept: latest-snapshot-unset.
void AddFoundSnapshot(KVolume* volume, const std::string& snapID) {
    auto snapshot = std::make_unique<KSnapshot>(snapID);
    snapshot->volume = volume;
    volume->AddSnapshotToList(snapshot.get());
    static_cast<void>(snapshot.release());
}

}  // namespace

int KArray::GetVolumeByID(const std::string& volID, KVolume*& volume) {
    LogTrace("Entering KArray::GetVolumeByID() with input param volID: %s", volID);
    RequireArgument(!volID.empty(), "KArray::GetVolumeByID - Invalid input parameter");
    const int status = FindKnownVolume(volumeList, volume, [&](KVolume& known) { return *known.volumeID == volID; });
    LogTrace("Exiting KArray::GetVolumeByID() with return code %d", status);
    return status;
}

int KArray::GetVolumeByDispName(const std::string& volDispName, KVolume*& volume) {
    LogTrace("Entering KArray::GetVolumeByDispName() with input param volDispName: %s", volDispName);
    RequireArgument(!volDispName.empty(), "KArray::GetVolumeByDispName - Invalid input parameter");
    const int status = FindKnownVolume(volumeList, volume,
                                       [&](KVolume& known) { return IsUpToZero(*known.volumeDispName, volDispName); });
    LogTrace("Exiting KArray::GetVolumeByDispName() with return code %d", status);
    return status;
}

int KArray::GetVolumeBySnapID(const std::string& snapID, KVolume*& volume) {
    LogTrace("Entering KArray::GetVolumeBySnapID() with input param snapID: %s", snapID);
    RequireArgument(!snapID.empty(), "KArray::GetVolumeBySnapID - Invalid input parameter");
    const int status = FindKnownVolume(volumeList, volume, [&](const KVolume& known) {
        return FindSnapshot(known.snapshotList, snapID) != known.snapshotList.end();
    });
    LogTrace("Exiting KArray::GetVolumeBySnapID() with return code %d", status);
    return status;
}

int KArray::GetVolumeByIDFromArray(const std::string& volID, KVolume*& volume) {
    LogTrace("Entering KArray::GetVolumeByIDFromArray() with input param volID: %s", volID);
    RequireArgument(!volID.empty(), "KArray::GetVolumeByIDFromArray - Invalid input parameter");
    int status = KStatusNotFound;
    std::list<KVolumeRecord> records;
    const KVolumeRecord* record = FetchMatchingRecord(
        *connection, records, status, [&](const KVolumeRecord& listed) { return listed.ieeeID == volID; });
    if (record != nullptr) {
        LogDetail("Found volume matching volume ID %s in the array", volID);
        volume = AppendOwned(volumeList, CreateVolume(this, volID, *record));
        LogDetail("Added volume %s to the internal volume list", record->name);
    }
    if (volume == nullptr) {  // Kept: callers-pointer-decides.
        status = KStatusNotFound;
        LogEvent("No volume matching id %s found in array %s", volID, *ipAddress);
    }
    LogTrace("Exiting KArray::GetVolumeByIDFromArray() with return code %d", status);
    return status;
}

int KArray::GetVolumeByDispNameFromArray(const std::string& volDispName, KVolume*& volume) {
    LogTrace("Entering KArray::GetVolumeByDispNameFromArray() with input param volDispName: %s", volDispName);
    RequireArgument(!volDispName.empty(), "KArray::GetVolumeByDispNameFromArray - Invalid input parameter");
    int status = KStatusNotFound;
    std::list<KVolumeRecord> records;
    const KVolumeRecord* record = FetchMatchingRecord(
        *connection, records, status, [&](const KVolumeRecord& listed) { return listed.displayName == volDispName; });
    if (record != nullptr) {
        // Kept: two-volume-identifiers.
        volume = AppendOwned(volumeList, CreateVolume(this, record->productID, *record));
        LogDetail("Added volume %s to the internal volume list", record->name);
    }
    if (volume == nullptr) {  // Kept: callers-pointer-decides.
        status = KStatusNotFound;
        LogEvent("No volume matching display name %s found in array %s", volDispName, *ipAddress);
    }
    LogTrace("Exiting KArray::GetVolumeByDispNameFromArray() with return code %d", status);
    return status;
}

int KArray::GetVolumeBySnapIDFromArray(const std::string& snapID, KVolume*& volume) {
    LogTrace("Entering KArray::GetVolumeBySnapIDFromArray() with input param snapID: %s", snapID);
    RequireArgument(!snapID.empty(), "KArray::GetVolumeBySnapIDFromArray - Invalid input parameter");
    std::list<KVolumeRecord> records;
    std::list<KSnapshotRecord> snapshotRecords;
    int status = connection->GetVolumesList(&records);
    auto record = status == KStatusSuccess ? records.begin() : records.end();
    while (record != records.end() && !GroupHasSnapshot(*connection, record->cgName, snapID, snapshotRecords, status)) {
        ++record;
    }
    if (record != records.end()) {
        auto found = CreateVolume(this, record->productID, *record);
        std::list<KVolume*> entry{found.get()};
        LogDetail("Added volume %s to the internal volume list", record->name);
        AddFoundSnapshot(found.get(), snapID);
        volumeList.splice(volumeList.end(), entry);  // from here on nothing fails
        volume = found.release();
        LogDetail("Added snapshot %s to the internal snapshot list", snapID);
    }
    if (volume == nullptr) {  // Kept: callers-pointer-decides.
        status = KStatusNotFound;
        LogEvent("No volume having a snapshot with id %s found in array %s", snapID, *ipAddress);
    }
    LogTrace("Exiting KArray::GetVolumeBySnapIDFromArray() with return code %d", status);
    return status;
}

}  // namespace Korvel
