#include <KorvelAccessLibrary.h>

#include <cstddef>
#include <string>
#include <vector>

#include "commands/Command.h"
#include "commands/CommandTable.h"
#include "library/Operation.h"
#include "library/Session.h"
#include "library/VolumeSearch.h"
#include "outcome/Failure.h"
#include "terminal/Confirmation.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    std::vector<std::string> snapshots;
    bool yes = false;
    Target target;
};

void Run(const Options& options, Report& report) {
    RequireConfirmable(options.yes);
    CheckUnrepeated(options.snapshots);
    for (const std::string& snapshot : options.snapshots) {
        CheckPath("snapshot name", "", DeleteSnapshotPath, snapshot);  // what no array could be sent needs no search
    }
    Session session(options.target);
    std::vector<FoundVolume> volumes;
    std::string listed;
    for (const std::string& snapshot : options.snapshots) {
        volumes.push_back(FindOneVolume(session, VolumeKey::Snapshot, snapshot));
        CheckPath("snapshot name", AddressOf(*volumes.back().array), DeleteSnapshotPath, snapshot);
        listed += "\n  " + snapshot + " on array " + AddressOf(*volumes.back().array);
    }
    Confirm(options.yes, "This deletes" + listed);

    report.SetColumns({{"Array", "array"}, {"Snapshot", "snapshot"}});
    for (std::size_t i = 0; i < volumes.size(); ++i) {
        std::string snapshot = options.snapshots[i];
        const FoundVolume& found = volumes[i];
        try {
            Perform(*found.array, "delete snapshot '" + snapshot + "'",
                    [&] { return found.volume->DeleteSnapshot(snapshot); });
            report.AddRow({AddressOf(*found.array), snapshot});
            report.SetSentence("Deleted:");
        } catch (const Failure& failure) {
            report.AddProblem(failure);
        }
    }
}

}  // namespace

void AddSnapshotDelete(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line, {"delete", "Delete snapshots", "korvelctl snapshot delete snap_4711_vol-1 snap_4711_vol-2 --yes"},
        [](CLI::App& command, Options& options) {
            command.add_option("SNAPSHOT", options.snapshots, "The snapshots' names")->required();
            AddYesOption(command, options.yes);
            AddTargetOptions(command, options.target);
        },
        Run);
}

}  // namespace Korvel::Ctl
