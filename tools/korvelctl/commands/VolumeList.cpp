#include <KorvelAccessLibrary.h>

#include <string>
#include <utility>
#include <vector>

#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "commands/VolumeReport.h"
#include "library/Ask.h"
#include "library/Listing.h"
#include "library/Session.h"
#include "library/Target.h"
#include "library/Volume.h"
#include "outcome/Failure.h"
#include "outcome/Report.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    Target target;
};

void Run(const Options& options, Report& report) {
    const Session session(options.target);
    session.RequireArrays();
    SetVolumeColumns(report);
    AskAll<std::vector<Volume>>(
        session.Arrays(), {"list its volumes"},
        [](KArray& array, Answering<std::vector<Volume>>& answering) { answering.Put(ListVolumes(array)); },
        [&report](const SharedArray& array, std::vector<Volume> volumes) {
            const std::string address = AddressOf(*array);
            for (Volume& volume : volumes) {
                report.AddRow(VolumeRow(address, std::move(volume)));
            }
        },
        [&report](const Failure& failure) { report.AddProblem(failure); });
    session.ReportProblem(report);
    report.SetEmptySentence("No array has a volume.");
}

}  // namespace

void AddVolumeList(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line, {"list", "List the volumes", "korvelctl volume list --array 10.0.0.21"},
        [](CLI::App& command, Options& options) { AddTargetOptions(command, options.target); }, Run);
}

}  // namespace Korvel::Ctl
