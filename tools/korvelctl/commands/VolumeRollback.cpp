#include <KorvelAccessLibrary.h>

#include <string>

#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "commands/VolumeReport.h"
#include "library/Ask.h"
#include "library/Explanation.h"
#include "library/Purpose.h"
#include "library/Session.h"
#include "library/Target.h"
#include "library/Volume.h"
#include "library/VolumeSearch.h"
#include "outcome/Report.h"
#include "terminal/Confirmation.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    std::string snapshot;
    bool yes = false;
    Target target;
};

/// Rolls the group of a volume back to a snapshot. The library takes the group from a volume object.
int RollBack(KArray& array, const Volume& volume, const std::string& snapshot) {
    KVolume known = volume.Known();
    KVolume* const pointer = &known;
    return array.ResyncVolume(snapshot, pointer);
}

void Run(const Options& options, Report& report) {
    RequireConfirmable(options.yes);
    CheckBodyText("snapshot name", options.snapshot);
    Session session(options.target);
    const FoundVolume found = FindVolumes(session, {{VolumeKey::Snapshot, options.snapshot}}).front();
    CheckPath("group name", found.Address(), RollbackPath, found.volume.group);

    Confirm(options.yes, "This takes the whole group '" + found.volume.group + "' of " + found.Described() +
                             " back to snapshot '" + options.snapshot + "'; what was written since is lost.");
    const Purpose purpose{"roll back to snapshot '" + options.snapshot + "'", NotListed};
    AskOne(found.array, purpose, [purpose, volume = found.volume, snapshot = options.snapshot](KArray& array) {
        const int status = RollBack(array, volume, snapshot);
        RequireSuccess(status, AddressOf(array), purpose);
        return status;
    });
    SetVolumeColumns(report);
    report.SetSentence("The group '" + found.volume.group + "' is rolled back to snapshot '" + options.snapshot + "'.");
    report.AddRow(VolumeRow(found.Address(), found.volume));
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
