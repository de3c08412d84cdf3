#include <KorvelAccessLibrary.h>

#include <string>
#include <utility>

#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "commands/VolumeReport.h"
#include "library/Session.h"
#include "library/Target.h"
#include "library/VolumeSearch.h"
#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"
#include "outcome/Report.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    WantedVolume wanted;
    Target target;
};

void Run(const Options& options, Report& report) {
    Session session(options.target);
    VolumeSearch search = SearchVolumes(session, {options.wanted});
    SetVolumeColumns(report);
    for (FoundVolume& found : search.found.front()) {
        report.AddRow(VolumeRow(found.Address(), std::move(found.volume)));
    }
    for (const Failure& failure : search.failures) {
        report.AddProblem(failure);
    }
    if (!report.HasRows() && search.failures.empty()) {
        report.AddProblem({NotFoundText(options.wanted), ExitNotFound});
    }
}

void Declare(CLI::App& command, Options& options) {
    CLI::Option_group* keys = command.add_option_group("key", "Exactly one of these");
    const auto add = [&](const char* name, VolumeKey key, const char* typeName, const char* description) {
        const auto store = [&options, key](const std::string& text) { options.wanted = {key, text}; };
        keys->add_option_function<std::string>(name, store, description)->type_name(typeName);
    };
    add("--id", VolumeKey::Id, "IEEE-ID", "The volume's IEEE identifier");
    add("--name", VolumeKey::DisplayName, "VOLUME", "The volume's display name");
    add("--snapshot", VolumeKey::Snapshot, "SNAPSHOT", "The name of one of its snapshots");
    keys->require_option(1);
    AddTargetOptions(command, options.target);
}

}  // namespace

void AddVolumeFind(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(family, line, {"find", "Find a volume", "korvelctl volume find --name Payroll"}, Declare, Run);
}

}  // namespace Korvel::Ctl
