#include <algorithm>
#include <memory>
#include <utility>

#include "foundation/KErrorHandling.h"
#include "foundation/KGeneratedNumber.h"
#include "foundation/KLog.h"
#include "foundation/KText.h"
#include "model/KOwnedList.h"
#include "model/KorvelAccessLibrary.h"
#include "rest/KConnection.h"

namespace Korvel {

// The exit lines of these operations and of the server lookups have a blank before the colon. Kept: colon-lines.

int KArray::CloneVolume(const std::string& cgID, const std::string& snapID, KVolume*& volume) {
    LogTrace("Entering KArray::CloneVolume() with input param cgID: %s snapID: %s", cgID, snapID);
    RequireArgument(!cgID.empty() && !snapID.empty(), "KArray::CloneVolume - Invalid input parameter");
    std::string cloneName(UpToZero(snapID));
    cloneName += "_" + std::to_string(DrawNameNumber()) + ".clone";
    std::string volID;
    std::string volName;
    std::string cgName;
    int status = connection->CloneVolume(cgID, snapID, cloneName, cgName);
    if (status == KStatusSuccess) {
        status = connection->GetVolumeInfoByDispName(cloneName, volID, volName, cgName);
    }
    if (status == KStatusSuccess) {
        // Kept: provider-line.
        LogRecord(KLogLevelEvent, providerModule, "Volume clone(%s - %s) created for snapshot(%s)", volID, volName,
                  snapID);
        auto clone = std::make_unique<KVolume>(volID, volName, cloneName, cgName);
        clone->SetArray(this);
        volume = AppendOwned(volumeList, std::move(clone));
        LogDetail("Added clone volume %s to the internal volume list", volName);
    }
    LogTrace("Exiting KArray::CloneVolume() with return code : %d", status);
    return status;
}

int KArray::AttachVolume(const std::string& volName, const std::string& serverID) {
    LogTrace("Entering KArray::AttachVolume() with input param volName: %s serverID: %s", volName, serverID);
    RequireArgument(!volName.empty() && !serverID.empty(), "KArray::AttachVolume - Invalid input parameter");
    const int status = connection->AttachVolume(volName, serverID);
    if (status == KStatusSuccess) {
        LogEvent("Volume %s successfully mapped to server ID: %s", volName, serverID);
    }
    LogTrace("Exiting KArray::AttachVolume() with return code : %d", status);
    return status;
}

int KArray::DetachVolume(const std::string& volName, const std::string& serverID) {
    LogTrace("Entering KArray::DetachVolume() with input param volName: %s serverID: %s", volName, serverID);
    RequireArgument(!volName.empty() && !serverID.empty(), "KArray::DetachVolume - Invalid input parameter");
    const int status = connection->DetachVolume(volName, serverID);
    if (status == KStatusSuccess) {
        LogEvent("Volume %s successfully detached from server ID: %s", volName, serverID);
    }
    LogTrace("Exiting KArray::DetachVolume() with return code : %d", status);
    return status;
}

int KArray::DeleteVolume(const std::string& volName) {
    LogTrace("Entering KArray::DeleteVolume() with input param volName: %s", volName);
    RequireArgument(!volName.empty(), "KArray::DeleteVolume - Invalid input parameter");
    const int status = connection->DeleteVolume(volName);
    if (status == KStatusSuccess) {
        LogEvent("Volume %s successfully deleted in the array", volName);
        std::string knownName;
        const auto found = std::find_if(volumeList.begin(), volumeList.end(), [&](KVolume* known) {
            if (known == nullptr) {
                return false;
            }
            known->GetVolumeName(knownName);
            return knownName == volName;
        });
        if (found != volumeList.end()) {  // Kept: first-entry-only.
            delete *found;
            volumeList.erase(found);
        }
    }
    LogTrace("Exiting KArray::DeleteVolume() with return code : %d", status);
    return status;
}

int KArray::ResyncVolume(const std::string& snapID, KVolume* const& volume) {
    LogTrace("Entering KArray::ResyncVolume()");
    RequireArgument(!snapID.empty() && volume != nullptr, "KArray::ResyncVolume - Invalid input parameter");
    std::string cgID;
    volume->GetCgID(cgID);
    const int status = connection->ResyncVolume(snapID, cgID);
    LogTrace("Exiting KArray::ResyncVolume() with return code : %d", status);
    return status;
}

}  // namespace Korvel
