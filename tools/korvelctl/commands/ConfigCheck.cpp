#include <string>

#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "configuration/Configuration.h"
#include "outcome/ExitStatus.h"
#include "outcome/Report.h"

namespace Korvel::Ctl {
namespace {

struct Options {};

void Run(const Options& /*options*/, Report& report) {
    const Configuration configuration = ReadConfiguration();
    report.SetColumns({{"Array", "array"}, {"Finding", "finding"}, {"Where", "place"}});
    report.SetRowsAreFindings();
    for (const std::string& fault : configuration.faults) {
        report.AddProblem({fault});
    }
    for (const ConfiguredArray& array : configuration.arrays) {
        for (const std::string& fault : array.faults) {
            report.AddRow({array.address, fault, array.place});
            report.AddProblem({array.place + ": array " + array.address + ": " + fault, ExitFailed, array.address});
        }
        if (array.faults.empty()) {
            report.AddRow({array.address, "in order", array.place});
        }
    }
    if (!report.Problems().empty()) {
        report.SetSentence("The configuration in " + configuration.source + " has faults.");
    } else if (report.HasRows()) {
        report.SetSentence("The configuration in " + configuration.source + " is in order.");
    } else {
        report.SetSentence("The configuration in " + configuration.source + " is in order; it names no array.");
    }
}

}  // namespace

void AddConfigCheck(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line,
        {"check", "Check the configured arrays without asking them; name every fault and its place",
         "korvelctl config check"},
        [](CLI::App&, Options&) {}, Run);
}

}  // namespace Korvel::Ctl
