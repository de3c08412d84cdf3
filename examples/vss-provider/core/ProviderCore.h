#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "core/ArrayCommit.h"
#include "core/ArrayWorker.h"
#include "core/Log.h"
#include "core/ProviderError.h"
#include "core/SnapshotSet.h"
#include "core/VolumeSearch.h"

namespace VssExample {

/// What a hardware provider does, without COM: it knows arrays, the identities of LUNs, snapshot sets and their states.
///
/// Every operation is one call of the VSS service, under the name that the service's interfaces give it, and throws
/// ProviderError when it cannot be carried out. By then all that the set has made on the arrays is removed again, and
/// nothing else; what could not be removed stands in the log by its name. The service may call from any thread: one
/// lock guards everything.
class ProviderCore {
public:
    /// How long arrays may take.
    struct Patience {
        /// Writers hold still for ten seconds at most; what is late by then is of no use to them.
        std::chrono::milliseconds commit{7000};
        /// Everything else.
        std::chrono::milliseconds ordinary{60000};
    };

    /// @param log where lines for the administrator go
    /// @param initiatorName tells the host's iSCSI initiator name (IQN); asked when a set is prepared
    /// @param patience how long arrays may take
    ProviderCore(Log log, std::function<std::string()> initiatorName, Patience patience);

    /// Unloads; see OnUnload.
    ~ProviderCore();
    ProviderCore(const ProviderCore&) = delete;
    ProviderCore& operator=(const ProviderCore&) = delete;

    /// Prepares the library and discovers the arrays that are configured.
    void OnLoad();

    /// Undoes sets that have not come to their end, and gives everything back. A set whose volumes have been made is at
    /// its end; if the provider is forced out, only when they have been mapped, too.
    /// @return whether nothing of this goes on: false as long as an array has not answered, when the code must stay
    bool OnUnload(bool forced);

    /// @param ids IEEE identifiers of LUNs
    /// @return whether every one of them is a volume of an array that is configured
    bool AreLunsSupported(const std::vector<std::string>& ids);

    /// Takes a volume into a set.
    /// @param setId, snapshotId the service's identifiers
    /// @param ids the IEEE identifiers of the volume's LUNs, all of them
    void BeginPrepareSnapshot(const std::string& setId, const std::string& snapshotId,
                              const std::vector<std::string>& ids);

    /// Does what may take its time: finds this host on every array of the set, registers it where it is missing.
    void EndPrepareSnapshots(const std::string& setId);

    /// The last step before writers hold still: makes sure that the names of the snapshots will be new.
    void PreCommitSnapshots(const std::string& setId);

    /// Takes the snapshots, one request for each array, on all arrays at once. Writers hold still meanwhile.
    void CommitSnapshots(const std::string& setId);

    /// Makes a volume from each snapshot.
    void PostCommitSnapshots(const std::string& setId);

    /// @param sources IEEE identifiers of LUNs of a set that has been committed
    /// @return the identifiers of the volumes that were made of them, in the same order
    std::vector<std::string> GetTargetLuns(const std::vector<std::string>& sources);

    /// Maps volumes that GetTargetLuns has named to this host.
    void LocateLuns(const std::vector<std::string>& targets);

    /// Removes a volume that GetTargetLuns has named, its mapping and its snapshot.
    void OnLunEmpty(const std::string& target);

    /// Undoes a set.
    void AbortSnapshots(const std::string& setId);

private:
    struct Place {
        std::map<std::string, SnapshotSet>::iterator set;
        std::vector<SnapshotItem>::iterator item;
    };

    ArrayWorker& WorkerOf(const std::string& address);
    FoundVolume Find(const std::string& id) const;
    SnapshotSet& Require(const std::string& setId, SnapshotSet::State state, const char* call);
    std::string FindThisHost(const std::string& address, const std::string& initiator);
    Place PlaceOf(const std::string& target);
    void AwaitFreshNames(const SnapshotSet& set);
    void TakeSnapshots(std::map<std::string, ArrayCommit>& commits);
    void Clone(SnapshotItem& item);
    void Remove(const SnapshotItem& item);
    void UndoUnfinished(bool forced);
    void Undo(const std::string& setId);
    void UndoAndRethrow(const std::string& setId);

    Log writeLog;
    std::function<std::string()> hostInitiator;
    Patience waits;

    std::mutex mutex;
    bool loaded = false;
    std::vector<std::unique_ptr<ArrayWorker>> workers;
    std::map<std::string, SnapshotSet> sets;
    std::map<std::string, std::string> servers;  // this host's identifier on each array
};

}  // namespace VssExample
