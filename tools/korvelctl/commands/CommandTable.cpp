#include "commands/CommandTable.h"

#include <cstdlib>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include "KVersion.h"
#include "outcome/ExitMeaning.h"
#include "outcome/Format.h"

namespace Korvel::Ctl {
namespace {

/// A family of commands, of which one is to be given.
struct Family {
    const char* name;
    const char* description;
    std::vector<void (*)(CLI::App&, CommandLine&)> commands;
};

/// In the order in which help shows them.
const Family Families[] = {
    {"array", "The configured arrays", {AddArrayList, AddArrayValidate}},
    {"volume",
     "The volumes of the arrays",
     {AddVolumeList, AddVolumeFind, AddVolumeClone, AddVolumeAttach, AddVolumeDetach, AddVolumeDelete,
      AddVolumeRollback}},
    {"snapshot", "Snapshots of volumes", {AddSnapshotList, AddSnapshotCreate, AddSnapshotDelete}},
    {"group", "The consistency groups of the volumes", {AddGroupList}},
    {"server", "The hosts an array knows", {AddServerList, AddServerFind}},
    {"config", "The arrays' configuration", {AddConfigCheck, AddConfigAdd, AddConfigSetKey, AddConfigRemove}},
};

std::string DescribeStatuses() {
    std::ostringstream text;
    text << "Exit status:\n";
    for (const ExitMeaning& meaning : ExitMeanings) {
        text << "  " << std::left << std::setw(28) << static_cast<int>(meaning.status) << meaning.meaning << '\n';
    }
    return text.str() + '\n';
}

/// @return what is wrong with a time limit, or an empty text
std::string JudgeTimeout(const std::string& text) {
    constexpr double most = 1e6;  // more does not fit into every clock
    char* end = nullptr;
    const double seconds = std::strtod(text.c_str(), &end);
    return *end == '\0' && seconds > 0 && seconds <= most ? "" : "a number above 0 and up to 1000000 is wanted";
}

void AddProgramOptions(CLI::App& program, CommandLine& line) {
    program.set_version_flag("--version", "korvelctl " KORVEL_VERSION);
    program.set_help_flag("--help,-h", "Show this help");
    CLI::Option* json = program.add_flag("--json", line.asJson, "Write one JSON object instead of a table");
    program.add_option("--format", line.format, "Write text, json (as --json does) or tsv: lines with tabs")
        ->check(CLI::IsMember(FormatNames()))
        ->excludes(json)
        ->type_name("FORMAT");
    program.add_option("--log", line.logFile, "Write the library's log records to a file instead of stderr")
        ->type_name("FILE");
    program
        .add_option("--log-level", line.logLevel,
                    "Write log records up to this level: 0 errors, 2 events, 3 tracing, 4 all")
        ->check(CLI::Range(0, 4))
        ->type_name("N");
    program
        .add_option("--timeout", line.timeout,
                    "Wait at most so long for the arrays; what has not answered then is named")
        ->check(JudgeTimeout)
        ->type_name("SECONDS");
    program.footer(DescribeStatuses() + "'korvelctl FAMILY COMMAND --help' explains a command and shows an example.");
}

}  // namespace

void DeclareCommands(CLI::App& program, CommandLine& line) {
    program.name("korvelctl");
    program.description("Shows and uses the storage arrays that this host is configured for.");
    program.allow_windows_style_options(false);  // a name may begin with '/'
    program.fallthrough();
    program.require_subcommand(1);
    AddProgramOptions(program, line);
    for (const Family& row : Families) {
        CLI::App* family = program.add_subcommand(row.name, row.description);
        family->require_subcommand(1);
        for (const auto addTo : row.commands) {
            addTo(*family, line);
        }
    }
    AddCompletion(program, line);
    AddReferenceFiles(program, line);
}

}  // namespace Korvel::Ctl
