#include "model/KSnapshot.h"

#include "foundation/KErrorHandling.h"
#include "foundation/KLog.h"

namespace Korvel {

KSnapshot::KSnapshot(const std::string& snapID) {
    LogTrace("Entering KSnapshot::KSnapshot()");
    RequireArgument(!snapID.empty(), "KSnapshot Constructor: Invalid input argument");
    snapshotID = new std::string(snapID);
    volume = nullptr;
    LogTrace("Exiting KSnapshot::KSnapshot()");
}

KSnapshot::~KSnapshot() {
    LogTrace("Entering KSnapshot::~KSnapshot()");
    delete snapshotID;
    LogTrace("Exiting KSnapshot::~KSnapshot()");
}

}  // namespace Korvel
