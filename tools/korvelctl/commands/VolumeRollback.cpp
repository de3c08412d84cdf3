#include <KorvelAccessLibrary.h>

#include <string>

#include "commands/Command.h"
#include "commands/CommandTable.h"
#include "commands/VolumeReport.h"
#include "library/Operation.h"
#include "library/Session.h"
#include "library/VolumeSearch.h"
#include "terminal/Confirmation.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    std::string snapshot;
    bool yes = false;
    Target target;
};

void Run(const Options& options, Report& report) {
    RequireConfirmable(options.yes);
    CheckBodyText("snapshot name", options.snapshot);
    Session session(options.target);
    const FoundVolume found = FindOneVolume(session, VolumeKey::Snapshot, options.snapshot);
    CheckPath("group name", AddressOf(*found.array), RollbackPath, found.Group());

    Confirm(options.yes, "This takes the whole group '" + found.Group() + "' of " + Described(found) +
                             " back to snapshot '" + options.snapshot + "'; what was written since is lost.");
    Perform(*found.array, "roll back to snapshot '" + options.snapshot + "'",
            [&] { return found.array->ResyncVolume(options.snapshot, found.volume); });
    SetVolumeColumns(report);
    report.SetSentence("The group '" + found.Group() + "' is rolled back to snapshot '" + options.snapshot + "'.");
    report.AddRow(VolumeRow(found));
}

}  // namespace

void AddVolumeRollback(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line,
        {"rollback", "Take a volume's consistency group back to a snapshot",
         "korvelctl volume rollback --snapshot snap_4711_vol-1"},
        [](CLI::App& command, Options& options) {
            command.add_option("--snapshot", options.snapshot, "The snapshot's name")
                ->type_name("SNAPSHOT")
                ->required();
            AddYesOption(command, options.yes);
            AddTargetOptions(command, options.target);
        },
        Run);
}

}  // namespace Korvel::Ctl
