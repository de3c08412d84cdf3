#include <KorvelAccessLibrary.h>

#include <string>
#include <utility>

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
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    std::string snapshot;
    Target target;
};

/// What the library tells of a volume that it made.
Volume Copied(KVolume& made) {
    Volume volume;
    std::string* id = nullptr;
    made.GetVolumeID(id);
    volume.id = *id;
    made.GetVolumeName(volume.name);
    made.GetVolumeDispName(volume.displayName);
    made.GetCgID(volume.group);
    return volume;
}

void Run(const Options& options, Report& report) {
    CheckBodyText("snapshot name", options.snapshot);
    Session session(options.target);
    const FoundVolume source = FindVolumes(session, {{VolumeKey::Snapshot, options.snapshot}}).front();
    const std::string group = source.volume.group;
    CheckPath("group name", source.Address(), ClonePath, group);

    const Purpose purpose{"clone snapshot '" + options.snapshot + "'", "volume list",
                          "if the snapshot was just cloned, wait a second"};
    Volume clone = AskOne(source.array, purpose, [purpose, group, snapshot = options.snapshot](KArray& array) {
        KVolume* made = nullptr;
        RequireSuccess(array.CloneVolume(group, snapshot, made), AddressOf(array), purpose);
        return Copied(*made);
    });
    SetVolumeColumns(report);
    report.SetSentence("Created a volume from snapshot '" + options.snapshot + "':");
    report.AddRow(VolumeRow(source.Address(), std::move(clone)));
}

}  // namespace

void AddVolumeClone(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line,
        {"clone", "Make a new volume from a snapshot", "korvelctl volume clone --snapshot snap_4711_vol-1"},
        [](CLI::App& command, Options& options) {
            command.add_option("--snapshot", options.snapshot, "The snapshot's name")
                ->type_name("SNAPSHOT")
                ->required();
            AddTargetOptions(command, options.target);
        },
        Run);
}

}  // namespace Korvel::Ctl
