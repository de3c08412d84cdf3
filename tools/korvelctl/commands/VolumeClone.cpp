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
    std::string snapshot;
    Target target;
};

void Run(const Options& options, Report& report) {
    CheckBodyText("snapshot name", options.snapshot);
    Session session(options.target);
    const FoundVolume source = FindOneVolume(session, VolumeKey::Snapshot, options.snapshot);
    CheckPath("group name", AddressOf(*source.array), ClonePath, source.Group());

    FoundVolume clone{source.array, nullptr};
    Perform(*source.array, "clone snapshot '" + options.snapshot + "'", [&] {
        const int status = source.array->CloneVolume(source.Group(), options.snapshot, clone.volume);
        if (status == KStatusNotFound) {
            throw Failure(ExitFailed, "array " + AddressOf(*source.array) +
                                          " made the clone, but does not list it: it cannot be named here");
        }
        return status;
    });
    SetVolumeColumns(report);
    report.SetSentence("Cloned " + Described(source) + " from snapshot '" + options.snapshot + "'.");
    report.AddRow(VolumeRow(clone));
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
