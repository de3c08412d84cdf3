#include <KorvelAccessLibrary.h>

#include <cstddef>
#include <map>
#include <string>
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
#include "outcome/Failure.h"
#include "outcome/Report.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    Target target;
};

/// A group and how many volumes it has.
struct Group {
    std::string name;
    std::size_t volumes;
};

std::vector<Group> ListGroups(KArray& array) {
    const std::vector<Volume> volumes = ListVolumes(array);
    std::map<std::string, std::size_t> counts;
    for (const Volume& volume : volumes) {
        ++counts[volume.group];
    }
    std::vector<Group> groups;
    for (const Volume* first : FirstOfGroups(volumes)) {
        groups.push_back({first->group, counts[first->group]});
    }
    return groups;
}

void Run(const Options& options, Report& report) {
    const Session session(options.target);
    session.RequireArrays();
    report.SetColumns({{"Array", "array"}, {"Group", "group"}, {"Volumes", "volumes"}});
    AskAll<std::vector<Group>>(
        session.Arrays(), {"list its volumes"},
        [](KArray& array, Answering<std::vector<Group>>& answering) { answering.Put(ListGroups(array)); },
        [&report](const SharedArray& array, const std::vector<Group>& groups) {
            for (const Group& group : groups) {
                report.AddRow({AddressOf(*array), group.name, std::to_string(group.volumes)});
            }
        },
        [&report](const Failure& failure) { report.AddProblem(failure); });
    session.ReportProblem(report);
    report.SetEmptySentence("No array has a group.");
}

}  // namespace

void AddGroupList(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line, {"list", "List the consistency groups that hold volumes", "korvelctl group list"},
        [](CLI::App& command, Options& options) { AddTargetOptions(command, options.target); }, Run);
}

}  // namespace Korvel::Ctl
