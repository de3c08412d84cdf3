#include <CLI/CLI.hpp>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "commands/Misspelling.h"
#include "crew/Crew.h"
#include "crew/Patience.h"
#include "library/Explanation.h"
#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"
#include "outcome/Format.h"
#include "outcome/Problem.h"
#include "outcome/Report.h"
#include "terminal/LogFile.h"
#include "terminal/System.h"
#include "text/Printable.h"

namespace Korvel::Ctl {
namespace {

/// @return the form that words ask for that were not read to their end: a script reads in it what is wrong with them
std::string FormatAskedFor(const std::vector<std::string>& words) {
    const std::string_view option = "--format=";
    for (std::size_t i = 0; i < words.size() && words[i] != "--"; ++i) {
        if (words[i] == "--json") {
            return "json";
        }
        if (words[i].starts_with(option)) {
            return words[i].substr(option.size());
        }
        if (words[i] == "--format" && i + 1 < words.size()) {
            return words[i + 1];
        }
    }
    return TextFormat;
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

/// Shows a text that is no table: in a form for scripts it is the one value of the one row.
int ShowDocument(const std::string& document, const std::string& format) {
    if (format != TextFormat) {
        Report report(MakeWriter(format, std::cout));
        report.SetColumns({{"Text", "text"}});
        report.AddRow({document});
        return Show(report);
    }
    if (!(std::cout << document).flush()) {
        std::cerr << "korvelctl: the result could not be written\n";
        return ExitFailed;
    }
    return ExitDone;
}

/// What keeps a command line from being carried out: what is wrong with it, or that it asks for help.
int AnswerParser(const CLI::App& program, const CLI::ParseError& error, const std::vector<std::string>& words) {
    const std::string format = FormatAskedFor(words);
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
        std::ostringstream help;
        program.exit(error, help);
        return ShowDocument(help.str(), format);
    }
    const std::string misspelling = DescribeMisspelling(program, words);
    Report report(MakeWriter(format, std::cout));
    report.AddProblem({misspelling.empty() ? error.what() : misspelling, ExitWrongUsage});
    const int status = Show(report);
    std::cerr << "'korvelctl --help' lists the commands.\n";
    return status;
}

int Run(int argc, char** argv) {
    CommandLine line;
    CLI::App program;
    DeclareCommands(program, line);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return AnswerParser(program, error, {argv + 1, argv + argc});
    }
    const std::string format = line.asJson ? "json" : line.format;
    if (!line.document.empty() && format == TextFormat) {
        return ShowDocument(line.document, format);
    }
    Report report(MakeWriter(format, std::cout));
    Crew::OnLongWait([&report] {
        report.ShowRows();
        std::cout.flush();
    });
    Carry(line, report);
    return Show(report);
}

}  // namespace
}  // namespace Korvel::Ctl

int main(int argc, char** argv) {
    int status = Korvel::Ctl::ExitFailed;
    Korvel::Ctl::ShareOneHeap();
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
