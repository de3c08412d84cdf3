#include <KorvelAccessLibrary.h>

#include <algorithm>
#include <list>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "commands/VolumeChoice.h"
#include "library/Ask.h"
#include "library/Explanation.h"
#include "library/Purpose.h"
#include "library/Session.h"
#include "library/Target.h"
#include "library/Volume.h"
#include "library/VolumeSearch.h"
#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"
#include "outcome/Report.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    VolumeChoice volumes;
    Target target;
};

/// The volumes to snapshot on one array: a set is consistent over one array, and each array takes its own.
struct ArraySet {
    SharedArray array;
    std::vector<Volume> volumes;
};

std::vector<ArraySet> GroupByArray(const std::vector<FoundVolume>& volumes) {
    std::vector<ArraySet> sets;
    for (const FoundVolume& found : volumes) {
        auto set =
            std::find_if(sets.begin(), sets.end(), [&](const ArraySet& other) { return other.array == found.array; });
        if (set == sets.end()) {
            set = sets.insert(sets.end(), ArraySet{found.array, {}});
        }
        set->volumes.push_back(found.volume);
    }
    return sets;
}

void CheckSendable(const ArraySet& set) {
    CheckPath("address", AddressOf(*set.array), SnapshotSetPath);
    std::vector<std::string> names;
    for (const Volume& volume : set.volumes) {
        CheckBodyText("volume name", volume.name);
        CheckBodyText("group name", volume.group);
        names.push_back(volume.name);
    }
    CheckUnrepeated(names);
}

/// Takes one array's set and returns the names the array gave.
std::list<std::string> TakeSet(KArray& array, const std::vector<Volume>& volumes, const Purpose& purpose) {
    std::list<std::string> names;
    std::list<std::string> groups;
    std::list<std::string*> namePointers;
    std::list<std::string*> groupPointers;
    for (const Volume& volume : volumes) {
        namePointers.push_back(&names.emplace_back(volume.name));
        groupPointers.push_back(&groups.emplace_back(volume.group));
    }
    std::list<std::string> snapshots;
    RequireSuccess(KVolume::CreateSnapshotSet(&array, namePointers, groupPointers, &snapshots), AddressOf(array),
                   purpose);
    return snapshots;
}

/// Shows what an array created. An array names the snapshots in the order it was asked for them; when their number is
/// another, or one has no name, nothing tells which snapshot is whose.
void ReportSet(Report& report, const ArraySet& set, const std::list<std::string>& snapshots) {
    const std::string address = AddressOf(*set.array);
    const auto named = snapshots.size() - static_cast<std::size_t>(std::count(snapshots.begin(), snapshots.end(), ""));
    const bool matched = named == snapshots.size() && named == set.volumes.size();
    auto volume = set.volumes.begin();
    for (const std::string& snapshot : snapshots) {
        if (matched) {
            report.AddRow({address, volume->displayName, volume->name, snapshot});
            ++volume;
        } else if (!snapshot.empty()) {
            report.AddRow({address, "?", "?", snapshot});
        }
    }
    if (!matched) {
        report.AddProblem({"array " + address + " was asked for " + std::to_string(set.volumes.size()) +
                               " snapshots and names " + std::to_string(named) +
                               "; look with 'korvelctl snapshot list --array " + address + "'",
                           ExitOutcomeUnknown, address});
    }
}

void TakeSets(const std::vector<ArraySet>& sets, Report& report) {
    std::vector<SharedArray> arrays;
    std::map<const KArray*, ArraySet> setOf;
    for (const ArraySet& set : sets) {
        arrays.push_back(set.array);
        setOf.emplace(set.array.get(), set);
    }
    const Purpose purpose{"create a snapshot set", "snapshot list", "if a set was just taken, wait a second"};
    AskAll<std::list<std::string>>(
        arrays, purpose,
        [setOf, purpose](KArray& array, Answering<std::list<std::string>>& answering) {
            answering.Put(TakeSet(array, setOf.at(&array).volumes, purpose));
        },
        [&](const SharedArray& array, const std::list<std::string>& snapshots) {
            ReportSet(report, setOf.at(array.get()), snapshots);
            if (report.HasRows()) {
                report.SetSentence("Created one consistent snapshot set on each array:");
            }
        },
        [&report](const Failure& failure) { report.AddProblem(failure); });  // what others created is shown
}

void Run(const Options& options, Report& report) {
    CheckUnrepeated(options.volumes.names);
    CheckUnrepeated(options.volumes.ids);
    Session session(options.target);
    const std::vector<ArraySet> sets = GroupByArray(FindVolumes(session, options.volumes.Wanted()));
    std::for_each(sets.begin(), sets.end(), CheckSendable);  // all before the first: nothing half done over a bad name

    report.SetColumns({{"Array", "array"}, {"Volume", "displayName"}, {"Name", "name"}, {"Snapshot", "snapshot"}});
    TakeSets(sets, report);
}

}  // namespace

void AddSnapshotCreate(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line,
        {"create", "Take one consistent set of snapshots of several volumes; one set on each array that holds any",
         "korvelctl snapshot create Payroll-Data Payroll-Log"},
        [](CLI::App& command, Options& options) {
            AddVolumesChoice(command, options.volumes);
            AddTargetOptions(command, options.target);
        },
        Run);
}

}  // namespace Korvel::Ctl
