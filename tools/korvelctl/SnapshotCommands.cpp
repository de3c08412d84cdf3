#include <algorithm>
#include <list>

#include "ArgumentCheck.h"
#include "CommandLine.h"
#include "Confirmation.h"
#include "VolumeSearch.h"

namespace Korvel::Ctl {
namespace {

struct CreateOptions {
    std::vector<std::string> volumes;
    Target target;
};

struct DeleteOptions {
    std::vector<std::string> snapshots;
    bool yes = false;
    Target target;
};

void RefuseRepeated(const std::vector<std::string>& names) {
    for (auto name = names.begin(); name != names.end(); ++name) {
        if (std::find(names.begin(), name, *name) != name) {
            throw KFailure(ExitWrongUsage, "'" + *name + "' is named twice");
        }
    }
}

/// The volumes to snapshot on one array: a set is consistent over one array, and each array takes its own.
struct ArraySet {
    KArray* array;
    std::vector<FoundVolume> volumes;
};

std::vector<ArraySet> GroupByArray(const std::vector<FoundVolume>& volumes) {
    std::vector<ArraySet> sets;
    for (const FoundVolume& found : volumes) {
        auto set =
            std::find_if(sets.begin(), sets.end(), [&](const ArraySet& other) { return other.array == found.array; });
        if (set == sets.end()) {
            set = sets.insert(sets.end(), ArraySet{found.array, {}});
        }
        set->volumes.push_back(found);
    }
    return sets;
}

void CheckSendable(const ArraySet& set) {
    CheckPath("address", AddressOf(*set.array), SnapshotSetPath);
    for (const FoundVolume& found : set.volumes) {
        CheckBodyText("volume name", found.Name());
        CheckBodyText("group name", found.Group());
    }
}

/// Takes one array's set and returns the names the array gave.
std::list<std::string> TakeSet(const ArraySet& set) {
    std::list<std::string> names;
    std::list<std::string> groups;
    std::list<std::string*> namePointers;
    std::list<std::string*> groupPointers;
    for (const FoundVolume& found : set.volumes) {
        namePointers.push_back(&names.emplace_back(found.Name()));
        groupPointers.push_back(&groups.emplace_back(found.Group()));
    }
    std::list<std::string> snapshots;
    Perform(*set.array, "create a snapshot set",
            [&] { return KVolume::CreateSnapshotSet(set.array, namePointers, groupPointers, &snapshots); });
    return snapshots;
}

/// Shows what an array created. An array names the snapshots in the order it was asked for them; when their number is
/// another, nothing tells which snapshot is whose.
void ReportSet(KReport& report, const ArraySet& set, const std::list<std::string>& snapshots) {
    const std::string address = AddressOf(*set.array);
    const bool matched = snapshots.size() == set.volumes.size();
    auto found = set.volumes.begin();
    for (const std::string& snapshot : snapshots) {
        if (!matched) {
            report.AddRow({address, "?", "?", snapshot});
            continue;
        }
        found->volume->AddCreatedSnapshot(snapshot);
        std::string latest;
        found->volume->GetLatestSnapshotID(latest);
        report.AddRow({address, found->DisplayName(), found->Name(), latest});
        ++found;
    }
    if (!matched) {
        report.AddProblem("array " + address + " was asked for " + std::to_string(set.volumes.size()) +
                          " snapshots and names " + std::to_string(snapshots.size()));
    }
}

KReport CreateSnapshots(const CreateOptions& options) {
    RefuseRepeated(options.volumes);
    KSession session(options.target);
    std::vector<FoundVolume> volumes;
    for (const std::string& name : options.volumes) {
        volumes.push_back(FindOneVolume(session, VolumeKey::DisplayName, name));
    }
    const std::vector<ArraySet> sets = GroupByArray(volumes);
    std::for_each(sets.begin(), sets.end(), CheckSendable);  // all before the first: nothing half done over a bad name

    KReport report({{"Array", "array"}, {"Volume", "displayName"}, {"Name", "name"}, {"Snapshot", "snapshot"}});
    for (const ArraySet& set : sets) {
        try {
            ReportSet(report, set, TakeSet(set));
        } catch (const KFailure& failure) {
            report.AddProblem(failure.what(), failure.Status());  // what other arrays created still has to be shown
        }
    }
    if (report.HasRows()) {
        report.SetSentence("Created one consistent snapshot set on each array:");
    }
    return report;
}

KReport DeleteSnapshots(const DeleteOptions& options) {
    RequireConfirmable(options.yes);
    RefuseRepeated(options.snapshots);
    for (const std::string& snapshot : options.snapshots) {
        CheckPath("snapshot name", "", DeleteSnapshotPath, snapshot);  // what no array could be sent needs no search
    }
    KSession session(options.target);
    std::vector<FoundVolume> volumes;
    std::string listed;
    for (const std::string& snapshot : options.snapshots) {
        volumes.push_back(FindOneVolume(session, VolumeKey::Snapshot, snapshot));
        CheckPath("snapshot name", AddressOf(*volumes.back().array), DeleteSnapshotPath, snapshot);
        listed += "\n  " + snapshot + " on array " + AddressOf(*volumes.back().array);
    }
    Confirm(options.yes, "This deletes" + listed);

    KReport report({{"Array", "array"}, {"Snapshot", "snapshot"}});
    for (std::size_t i = 0; i < volumes.size(); ++i) {
        std::string snapshot = options.snapshots[i];
        const FoundVolume& found = volumes[i];
        try {
            Perform(*found.array, "delete snapshot '" + snapshot + "'",
                    [&] { return found.volume->DeleteSnapshot(snapshot); });
            report.AddRow({AddressOf(*found.array), snapshot});
            report.SetSentence("Deleted:");
        } catch (const KFailure& failure) {
            report.AddProblem(failure.what(), failure.Status());
        }
    }
    return report;
}

}  // namespace

void AddSnapshotCommands(CLI::App& program, CommandLine& line) {
    CLI::App& family = AddFamily(program, "snapshot", "Snapshots of volumes");
    AddCommand<CreateOptions>(
        family, line,
        {"create", "Take one consistent set of snapshots of several volumes; one set on each array that holds any",
         "korvelctl snapshot create Payroll-Data Payroll-Log"},
        [](CLI::App& command, CreateOptions& options) {
            command.add_option("VOLUME", options.volumes, "The volumes' display names")->required();
            AddTargetOptions(command, options.target);
        },
        CreateSnapshots);
    AddCommand<DeleteOptions>(
        family, line, {"delete", "Delete snapshots", "korvelctl snapshot delete snap_4711_vol-1 snap_4711_vol-2 --yes"},
        [](CLI::App& command, DeleteOptions& options) {
            command.add_option("SNAPSHOT", options.snapshots, "The snapshots' names")->required();
            AddYesOption(command, options.yes);
            AddTargetOptions(command, options.target);
        },
        DeleteSnapshots);
}

}  // namespace Korvel::Ctl
