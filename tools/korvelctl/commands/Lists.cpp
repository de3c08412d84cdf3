// What every array is asked for whole: its volumes, its groups and its hosts.

#include <KorvelAccessLibrary.h>

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "commands/VolumeReport.h"
#include "library/Ask.h"
#include "library/Listing.h"
#include "library/Purpose.h"
#include "library/Server.h"
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

/// @param list asks one array
/// @param rowOf makes a row of the array's address and one item
/// @param nothing the sentence for when there is none
template <typename Item, typename RowOf>
void List(const Target& target, Report& report, const Purpose& purpose, std::vector<Item> (*list)(KArray&), RowOf rowOf,
          const char* nothing) {
    using Items = std::vector<Item>;
    const Session session(target);
    session.RequireArrays();
    AskAll<Items>(
        session.Arrays(), purpose, [list](KArray& array, Answering<Items>& answering) { answering.Put(list(array)); },
        [&](const SharedArray& array, Items items) {
            const std::string address = AddressOf(*array);
            for (Item& item : items) {
                report.AddRow(rowOf(address, std::move(item)));
            }
        },
        [&report](const Failure& failure) { report.AddProblem(failure); });
    session.ReportProblem(report);
    report.SetEmptySentence(nothing);
}

/// A group and how many volumes it has.
using Group = std::pair<std::string, std::size_t>;

std::vector<Group> ListGroups(KArray& array) {
    const std::vector<Volume> volumes = ListVolumes(array);
    std::map<std::string, std::size_t> counts;
    for (const Volume& volume : volumes) {
        ++counts[volume.group];
    }
    std::vector<Group> groups;
    for (const Volume* first : FirstOfGroups(volumes)) {
        groups.emplace_back(first->group, counts[first->group]);
    }
    return groups;
}

std::vector<std::string> GroupRow(const std::string& address, const Group& group) {
    return {address, group.first, std::to_string(group.second)};
}

std::vector<std::string> ServerRow(const std::string& address, const Server& server) {
    return {address, server.iqn, server.id, server.address};
}

void RunVolumes(const Options& options, Report& report) {
    SetVolumeColumns(report);
    List(options.target, report, {"list its volumes"}, ListVolumes, VolumeRow, "No array has a volume.");
}

void RunGroups(const Options& options, Report& report) {
    report.SetColumns({{"Array", "array"}, {"Group", "group"}, {"Volumes", "volumes"}});
    List(options.target, report, {"list its volumes"}, ListGroups, GroupRow, "No array has a group.");
}

void RunServers(const Options& options, Report& report) {
    report.SetColumns(
        {{"Array", "array"}, {"Initiator name", "iqn"}, {"Server ID", "serverId"}, {"iSCSI address", "iscsiAddress"}});
    List(options.target, report, {"list its hosts"}, ListServers, ServerRow, "No array knows a host.");
}

void Declare(CLI::App& command, Options& options) {
    AddTargetOptions(command, options.target);
}

}  // namespace

void AddVolumeList(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(family, line, {"list", "List the volumes", "korvelctl volume list --array 10.0.0.21"}, Declare,
                        RunVolumes);
}

void AddGroupList(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(family, line, {"list", "List the consistency groups that hold volumes", "korvelctl group list"},
                        Declare, RunGroups);
}

void AddServerList(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(family, line,
                        {"list", "List the hosts that the arrays know; registers none", "korvelctl server list"},
                        Declare, RunServers);
}

}  // namespace Korvel::Ctl
