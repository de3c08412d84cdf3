#include <KorvelAccessLibrary.h>

#include <algorithm>
#include <list>
#include <string>
#include <vector>

#include "commands/Command.h"
#include "commands/CommandTable.h"
#include "library/Operation.h"
#include "library/Session.h"
#include "library/VolumeSearch.h"
#include "outcome/Failure.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    std::vector<std::string> volumes;
    Target target;
};

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
void ReportSet(Report& report, const ArraySet& set, const std::list<std::string>& snapshots) {
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
        report.AddProblem({"array " + address + " was asked for " + std::to_string(set.volumes.size()) +
                               " snapshots and names " + std::to_string(snapshots.size()),
                           ExitFailed, address});
    }
}

void Run(const Options& options, Report& report) {
    CheckUnrepeated(options.volumes);
    Session session(options.target);
    std::vector<FoundVolume> volumes;
    for (const std::string& name : options.volumes) {
        volumes.push_back(FindOneVolume(session, VolumeKey::DisplayName, name));
    }
    const std::vector<ArraySet> sets = GroupByArray(volumes);
    std::for_each(sets.begin(), sets.end(), CheckSendable);  // all before the first: nothing half done over a bad name

    report.SetColumns({{"Array", "array"}, {"Volume", "displayName"}, {"Name", "name"}, {"Snapshot", "snapshot"}});
    for (const ArraySet& set : sets) {
        try {
            ReportSet(report, set, TakeSet(set));
        } catch (const Failure& failure) {
            report.AddProblem(failure);  // what other arrays created still has to be shown
        }
    }
    if (report.HasRows()) {
        report.SetSentence("Created one consistent snapshot set on each array:");
    }
}

}  // namespace

void AddSnapshotCreate(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line,
        {"create", "Take one consistent set of snapshots of several volumes; one set on each array that holds any",
         "korvelctl snapshot create Payroll-Data Payroll-Log"},
        [](CLI::App& command, Options& options) {
            command.add_option("VOLUME", options.volumes, "The volumes' display names")->required();
            AddTargetOptions(command, options.target);
        },
        Run);
}

}  // namespace Korvel::Ctl
