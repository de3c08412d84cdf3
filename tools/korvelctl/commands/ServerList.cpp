#include <KorvelAccessLibrary.h>

#include <string>
#include <vector>

#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "library/Ask.h"
#include "library/Listing.h"
#include "library/Server.h"
#include "library/Session.h"
#include "library/Target.h"
#include "outcome/Failure.h"
#include "outcome/Report.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    Target target;
};

void Run(const Options& options, Report& report) {
    const Session session(options.target);
    session.RequireArrays();
    report.SetColumns(
        {{"Array", "array"}, {"Initiator name", "iqn"}, {"Server ID", "serverId"}, {"iSCSI address", "iscsiAddress"}});
    AskAll<std::vector<Server>>(
        session.Arrays(), {"list its hosts"},
        [](KArray& array, Answering<std::vector<Server>>& answering) { answering.Put(ListServers(array)); },
        [&report](const SharedArray& array, const std::vector<Server>& servers) {
            for (const Server& server : servers) {
                report.AddRow({AddressOf(*array), server.iqn, server.id, server.address});
            }
        },
        [&report](const Failure& failure) { report.AddProblem(failure); });
    session.ReportProblem(report);
    report.SetEmptySentence("No array knows a host.");
}

}  // namespace

void AddServerList(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line, {"list", "List the hosts that the arrays know; registers none", "korvelctl server list"},
        [](CLI::App& command, Options& options) { AddTargetOptions(command, options.target); }, Run);
}

}  // namespace Korvel::Ctl
