#include <KorvelAccessLibrary.h>

#include <string>

#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "commands/VolumeChoice.h"
#include "commands/VolumeReport.h"
#include "library/Ask.h"
#include "library/Explanation.h"
#include "library/Purpose.h"
#include "library/Session.h"
#include "library/Target.h"
#include "library/VolumeSearch.h"
#include "outcome/Report.h"
#include "terminal/Confirmation.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    VolumeChoice volume;
    bool yes = false;
    Target target;
};

void Run(const Options& options, Report& report) {
    RequireConfirmable(options.yes);
    Session session(options.target);
    const FoundVolume found = FindVolumes(session, options.volume.Wanted()).front();
    CheckPath("volume name", found.Address(), DeleteVolumePath, found.volume.name);

    Confirm(options.yes, "This deletes " + found.Described() + " with all its data.");
    const Purpose purpose{"delete " + found.Described(), "volume list"};
    AskOne(found.array, purpose, [purpose, name = found.volume.name](KArray& array) {
        const int status = array.DeleteVolume(name);
        RequireSuccess(status, AddressOf(array), purpose);
        return status;
    });
    SetVolumeColumns(report);
    report.SetSentence("Deleted " + found.Described() + ".");
    report.AddRow(VolumeRow(found.Address(), found.volume));
}

}  // namespace

void AddVolumeDelete(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line, {"delete", "Delete a volume", "korvelctl volume delete Payroll --array 10.0.0.21"},
        [](CLI::App& command, Options& options) {
            AddVolumeChoice(command, options.volume);
            AddYesOption(command, options.yes);
            AddTargetOptions(command, options.target);
        },
        Run);
}

}  // namespace Korvel::Ctl
