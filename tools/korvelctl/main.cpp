#include <CLI/CLI.hpp>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "commands/Misspelling.h"
#include "crew/Crew.h"
#include "crew/Patience.h"
#include "library/Explanation.h"
#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"
#include "outcome/JsonWriter.h"
#include "outcome/Problem.h"
#include "outcome/Report.h"
#include "outcome/RowWriter.h"
#include "outcome/TableWriter.h"
#include "terminal/LogFile.h"
#include "text/Printable.h"

namespace Korvel::Ctl {
namespace {

std::unique_ptr<RowWriter> MakeWriter(const CommandLine& line) {
    if (line.asJson) {
        return std::make_unique<JsonWriter>(std::cout);
    }
    return std::make_unique<TableWriter>(std::cout);
}

/// Carries the command out; what ends it is one more problem of the report.
void Carry(const CommandLine& line, Report& report) {
    try {
        SetLogging(line.logFile, line.logLevel, report);
        Patience::Begin(line.timeout);
        line.action(report);
    } catch (const Failure& failure) {
        report.AddProblem(failure);
    } catch (const std::exception& error) {
        report.AddProblem({Explain(error)});
    }
}

int Show(Report& report) {
    report.Finish();
    if (!std::cout.flush()) {
        report.AddProblem({"the result could not be written"});
    }
    for (const Problem& problem : report.Problems()) {
        std::cerr << "korvelctl: " << Printable(problem.text) << '\n';
    }
    return report.Status();
}

int ShowDocument(const std::string& document) {
    if (!(std::cout << document).flush()) {
        std::cerr << "korvelctl: the result could not be written\n";
        return ExitFailed;
    }
    return ExitDone;
}

int Run(int argc, char** argv) {
    CommandLine line;
    CLI::App program;
    DeclareCommands(program, line);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
            return program.exit(error);
        }
        const std::string misspelling = DescribeMisspelling(program, {argv + 1, argv + argc});
        std::cerr << "korvelctl: " << Printable(misspelling.empty() ? error.what() : misspelling)
                  << "\n'korvelctl --help' lists the commands.\n";
        return ExitWrongUsage;
    }
    if (!line.document.empty() && !line.asJson) {
        return ShowDocument(line.document);
    }
    Report report(MakeWriter(line));
    Carry(line, report);
    return Show(report);
}

}  // namespace
}  // namespace Korvel::Ctl

int main(int argc, char** argv) {
    int status = Korvel::Ctl::ExitFailed;
    std::ios::sync_with_stdio(false);  // a long list is written in large pieces
    try {
        status = Korvel::Ctl::Run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "korvelctl: " << Korvel::Ctl::Printable(error.what()) << '\n';
    }
    if (Korvel::Ctl::Crew::LeftWorkBehind()) {  // a request still hangs: nothing that it uses may be taken down
        std::cout.flush();
        std::_Exit(status);
    }
    return status;
}
