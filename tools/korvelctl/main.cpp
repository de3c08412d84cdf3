#include <exception>
#include <iostream>

#include "CommandLine.h"
#include "KFailure.h"
#include "System.h"

namespace Korvel::Ctl {
namespace {

void AddProgramOptions(CLI::App& program, CommandLine& line) {
    program.set_version_flag("--version", "korvelctl " KORVELCTL_VERSION);
    program.set_help_flag("--help,-h", "Show this help");
    program.add_flag("--json", line.asJson, "Write a JSON list instead of a table");
    program.add_option("--log", line.logFile, "Write the library's log records to a file instead of stderr")
        ->type_name("FILE");
    program
        .add_option("--log-level", line.logLevel,
                    "Write log records up to this level: 0 errors, 2 events, 3 tracing, 4 all")
        ->check(CLI::Range(0, 4))
        ->type_name("N");
    program.footer(
        "Exit status: 0 done, 1 failed, 2 not found, 64 wrong usage.\n"
        "'korvelctl FAMILY COMMAND --help' explains a command and shows an example.");
    program.failure_message([](const CLI::App*, const CLI::Error& error) {
        return "korvelctl: " + std::string(error.what()) + "\n'korvelctl --help' lists the commands.\n";
    });
}

/// The logging library reads its settings from the environment, when the first record is written.
void SetLogging(const CommandLine& line) {
    if (!line.logFile.empty()) {
        SetEnvironment("KORVEL_LOG_FILE", line.logFile);
    }
    if (!line.logLevel.empty()) {
        SetEnvironment("KORVEL_LOG_LEVEL", line.logLevel);
    }
}

int Show(const KReport& report, bool asJson) {
    report.Print(std::cout, asJson);
    if (!std::cout.flush()) {
        throw KFailure(ExitFailed, "the result could not be written");
    }
    for (const std::string& problem : report.Problems()) {
        std::cerr << "korvelctl: " << Printable(problem) << '\n';
    }
    return report.Status();
}

int Run(int argc, char** argv) {
    CommandLine line;
    CLI::App program("Shows and uses the storage arrays that this host is configured for.", "korvelctl");
    program.allow_windows_style_options(false);  // a name may begin with '/'
    program.fallthrough();
    program.require_subcommand(1);
    AddProgramOptions(program, line);
    AddArrayCommands(program, line);
    AddVolumeCommands(program, line);
    AddSnapshotCommands(program, line);
    AddServerCommands(program, line);
    AddConfigCommands(program, line);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return program.exit(error) == 0 ? ExitDone : ExitWrongUsage;
    }
    SetLogging(line);
    return Show(line.action(), line.asJson);
}

}  // namespace
}  // namespace Korvel::Ctl

int main(int argc, char** argv) {
    try {
        return Korvel::Ctl::Run(argc, argv);
    } catch (const Korvel::Ctl::KFailure& failure) {
        std::cerr << "korvelctl: " << Korvel::Ctl::Printable(failure.what()) << '\n';
        return failure.Status();
    } catch (const std::exception& error) {
        std::cerr << "korvelctl: " << Korvel::Ctl::Printable(Korvel::Ctl::Explain(error)) << '\n';
        return Korvel::Ctl::ExitFailed;
    }
}
