#include <KorvelAccessLibrary.h>

#include <string>
#include <vector>

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
    std::string volume;
    bool yes = false;
    Target target;
};

void Run(const Options& options, Report& report) {
    RequireConfirmable(options.yes);
    Session session(options.target);
    const FoundVolume found = FindOneVolume(session, VolumeKey::DisplayName, options.volume);
    CheckPath("volume name", AddressOf(*found.array), DeleteVolumePath, found.Name());
    const std::string described = Described(found);  // before the deletion, which takes the volume object with it
    const std::vector<std::string> row = VolumeRow(found);

    Confirm(options.yes, "This deletes " + described + " with all its data.");
    Perform(*found.array, "delete " + described, [&] { return found.array->DeleteVolume(found.Name()); });
    SetVolumeColumns(report);
    report.AddRow(row);
    report.SetSentence("Deleted " + described + ".");
}

}  // namespace

void AddVolumeDelete(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line, {"delete", "Delete a volume", "korvelctl volume delete Payroll --array 10.0.0.21"},
        [](CLI::App& command, Options& options) {
            command.add_option("VOLUME", options.volume, "The volume's display name")->required();
            AddYesOption(command, options.yes);
            AddTargetOptions(command, options.target);
        },
        Run);
}

}  // namespace Korvel::Ctl
