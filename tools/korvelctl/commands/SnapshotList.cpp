#include <KorvelAccessLibrary.h>

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "library/Ask.h"
#include "library/Listing.h"
#include "library/Session.h"
#include "library/Target.h"
#include "library/Volume.h"
#include "library/VolumeSearch.h"
#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"
#include "outcome/Report.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    std::string volume;
    std::string group;
    Target target;
};

/// @return the groups to ask: all, the one that is named, or those of the volumes with the display name
std::vector<std::string> GroupsToAsk(const Options& options, const std::vector<Volume>& volumes) {
    std::vector<std::string> groups;
    std::set<std::string> ofVolume;
    for (const Volume& volume : volumes) {
        if (volume.displayName == options.volume) {
            ofVolume.insert(volume.group);
        }
    }
    for (const Volume* first : FirstOfGroups(volumes)) {
        if ((options.group.empty() || first->group == options.group) &&
            (options.volume.empty() || ofVolume.contains(first->group))) {
            groups.push_back(first->group);
        }
    }
    return groups;
}

void ListArray(KArray& array, const Options& options, Answering<std::vector<Snapshot>>& answering) {
    const std::vector<std::string> groups = GroupsToAsk(options, ListVolumes(array));
    for (std::size_t asked = 0; asked < groups.size(); ++asked) {
        answering.progress.Set(asked, groups.size(), "groups asked");
        answering.Put(ListSnapshots(array, groups[asked]));
    }
}

void Run(const Options& options, Report& report) {
    const Session session(options.target);
    session.RequireArrays();
    report.SetColumns(
        {{"Array", "array"}, {"Group", "group"}, {"Snapshot", "snapshot"}, {"Display name", "displayName"}});
    bool found = options.volume.empty() && options.group.empty();
    AskAll<std::vector<Snapshot>>(
        session.Arrays(), {"list its snapshots"},
        [options](KArray& array, Answering<std::vector<Snapshot>>& answering) { ListArray(array, options, answering); },
        [&](const SharedArray& array, const std::vector<Snapshot>& snapshots) {
            found = true;
            for (const Snapshot& snapshot : snapshots) {
                report.AddRow({AddressOf(*array), snapshot.group, snapshot.name, snapshot.displayName});
            }
        },
        [&report](const Failure& failure) { report.AddProblem(failure); });
    session.ReportProblem(report);
    if (!found && report.Problems().empty()) {
        report.AddProblem({options.group.empty() ? NotFoundText({VolumeKey::DisplayName, options.volume})
                                                 : "there is no group '" + options.group + "' with a volume",
                           ExitNotFound});
    }
    report.SetEmptySentence("There is no snapshot.");
}

void Declare(CLI::App& command, Options& options) {
    CLI::Option* volume =
        command.add_option("--volume", options.volume, "Only of the groups of the volumes with this display name")
            ->type_name("VOLUME");
    command.add_option("--group", options.group, "Only of this consistency group")
        ->type_name("GROUP")
        ->excludes(volume);
    AddTargetOptions(command, options.target);
}

}  // namespace

void AddSnapshotList(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(family, line, {"list", "List the snapshots", "korvelctl snapshot list --volume Payroll"},
                        Declare, Run);
}

}  // namespace Korvel::Ctl
