#include <KorvelAccessLibrary.h>

#include <string>

#include "commands/Command.h"
#include "commands/CommandTable.h"
#include "commands/VolumeReport.h"
#include "library/Operation.h"
#include "library/Session.h"
#include "library/VolumeSearch.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    std::string id;
    std::string name;
    std::string snapshot;
    Target target;
};

void Run(const Options& options, Report& report) {
    Session session(options.target);
    const VolumeSearch search = !options.id.empty() ? SearchVolume(session, VolumeKey::Id, options.id)
                                : !options.snapshot.empty()
                                    ? SearchVolume(session, VolumeKey::Snapshot, options.snapshot)
                                    : SearchVolume(session, VolumeKey::DisplayName, options.name);
    SetVolumeColumns(report);
    for (const FoundVolume& found : search.found) {
        report.AddRow(VolumeRow(found));
    }
    for (const std::string& problem : search.problems) {
        report.AddProblem({problem, search.found.empty() ? ExitFailed : ExitDone});
    }
    if (search.found.empty() && search.problems.empty()) {
        report.AddProblem({"no such volume", ExitNotFound});
    }
}

void Declare(CLI::App& command, Options& options) {
    CLI::Option_group* keys = command.add_option_group("key", "Exactly one of these");
    keys->add_option("--id", options.id, "The volume's IEEE identifier")->type_name("IEEE-ID");
    keys->add_option("--name", options.name, "The volume's display name")->type_name("DISPLAY-NAME");
    keys->add_option("--snapshot", options.snapshot, "The name of one of its snapshots")->type_name("SNAPSHOT");
    keys->require_option(1);
    AddTargetOptions(command, options.target);
}

}  // namespace

void AddVolumeFind(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(family, line, {"find", "Find a volume", "korvelctl volume find --name Payroll"}, Declare, Run);
}

}  // namespace Korvel::Ctl
