#include <KorvelAccessLibrary.h>

#include <string>

#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "library/Ask.h"
#include "library/ServerSearch.h"
#include "library/Session.h"
#include "library/Target.h"
#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"
#include "outcome/Report.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    std::string iqn;
    Target target;
};

void Run(const Options& options, Report& report) {
    CheckBodyText("initiator name", options.iqn);
    Session session(options.target);
    session.RequireArrays();
    // The array registers a host it does not know: that must not happen on an array nobody thought of.
    if (options.target.addresses.empty() && session.Arrays().size() > 1) {
        throw Failure(ExitWrongUsage,
                      "more than one array is configured, and an array registers a host it does not know: name the "
                      "arrays with --array, or look with 'korvelctl server list'");
    }
    report.SetColumns({{"Array", "array"}, {"Initiator name", "iqn"}, {"Server ID", "serverId"}});
    FindOrRegisterServer(session.Arrays(), options.iqn, report, [&](const SharedArray& array, const std::string& id) {
        report.AddRow({AddressOf(*array), options.iqn, id});
    });
}

}  // namespace

void AddServerFind(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line,
        {"find", "Find a host by its iSCSI initiator name. The array registers the host if it does not know it",
         "korvelctl server find iqn.2024-01.com.example:host1 --array 10.0.0.21"},
        [](CLI::App& command, Options& options) {
            command.add_option("IQN", options.iqn, "The host's iSCSI initiator name")->required();
            AddTargetOptions(command, options.target);
        },
        Run);
}

}  // namespace Korvel::Ctl
