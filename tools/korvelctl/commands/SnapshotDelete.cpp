#include <KorvelAccessLibrary.h>

#include <cstddef>
#include <string>
#include <vector>

#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "library/Ask.h"
#include "library/Explanation.h"
#include "library/Purpose.h"
#include "library/Session.h"
#include "library/Target.h"
#include "library/VolumeSearch.h"
#include "outcome/Failure.h"
#include "outcome/Report.h"
#include "terminal/Confirmation.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    std::vector<std::string> snapshots;
    bool yes = false;
    Target target;
};

void Delete(const FoundVolume& found, const std::string& snapshot) {
    const Purpose purpose{"delete snapshot '" + snapshot + "'", "snapshot list"};
    AskOne(found.array, purpose, [purpose, volume = found.volume, snapshot](KArray& array) {
        KVolume known = volume.Known();
        known.SetArray(&array);
        std::string name = snapshot;
        const int status = known.DeleteSnapshot(name);
        RequireSuccess(status, AddressOf(array), purpose);
        return status;
    });
}

void Run(const Options& options, Report& report) {
    RequireConfirmable(options.yes);
    CheckUnrepeated(options.snapshots);
    std::vector<WantedVolume> wanted;
    for (const std::string& snapshot : options.snapshots) {
        CheckPath("snapshot name", "", DeleteSnapshotPath, snapshot);  // what no array could be sent needs no search
        wanted.push_back({VolumeKey::Snapshot, snapshot});
    }
    Session session(options.target);
    const std::vector<FoundVolume> volumes = FindVolumes(session, wanted);
    std::vector<std::string> listed;
    for (std::size_t i = 0; i < volumes.size(); ++i) {
        CheckPath("snapshot name", volumes[i].Address(), DeleteSnapshotPath, options.snapshots[i]);
        listed.push_back(options.snapshots[i] + " on array " + volumes[i].Address());
    }
    Confirm(options.yes, "This deletes", listed);

    report.SetColumns({{"Array", "array"}, {"Snapshot", "snapshot"}});
    for (std::size_t i = 0; i < volumes.size(); ++i) {
        try {
            Delete(volumes[i], options.snapshots[i]);
            report.AddRow({volumes[i].Address(), options.snapshots[i]});
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
