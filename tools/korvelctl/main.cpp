#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <memory>

#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "library/Operation.h"
#include "outcome/Failure.h"
#include "outcome/JsonWriter.h"
#include "outcome/Report.h"
#include "outcome/TableWriter.h"
#include "terminal/System.h"
#include "text/Printable.h"

namespace Korvel::Ctl {
namespace {

/// The logging library reads its settings from the environment, when the first record is written.
void SetLogging(const CommandLine& line) {
    if (!line.logFile.empty()) {
        SetEnvironment("KORVEL_LOG_FILE", line.logFile);
    }
    if (!line.logLevel.empty()) {
        SetEnvironment("KORVEL_LOG_LEVEL", line.logLevel);
    }
}

std::unique_ptr<RowWriter> MakeWriter(const CommandLine& line) {
    if (line.asJson) {
        return std::make_unique<JsonWriter>(std::cout);
    }
    return std::make_unique<TableWriter>(std::cout);
}

/// Carries the command out; what ends it is one more problem of the report.
void Carry(const CommandLine& line, Report& report) {
    try {
        line.action(report);
    } catch (const Failure& failure) {
        report.AddProblem(failure);
    } catch (const std::exception& error) {
        report.AddProblem({Explain(error)});
    }
}

int Run(int argc, char** argv) {
    CommandLine line;
    CLI::App program;
    DeclareCommands(program, line);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return program.exit(error) == 0 ? ExitDone : ExitWrongUsage;
    }
    SetLogging(line);
    Report report(MakeWriter(line));
    Carry(line, report);
    report.Finish();
    if (!std::cout.flush()) {
        report.AddProblem({"the result could not be written"});
    }
    for (const Problem& problem : report.Problems()) {
        std::cerr << "korvelctl: " << Printable(problem.text) << '\n';
    }
    return report.Status();
}

}  // namespace
}  // namespace Korvel::Ctl

int main(int argc, char** argv) {
    try {
        return Korvel::Ctl::Run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "korvelctl: " << Korvel::Ctl::Printable(error.what()) << '\n';
        return Korvel::Ctl::ExitFailed;
    }
}
