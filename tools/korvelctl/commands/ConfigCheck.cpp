#include <set>
#include <string>
#include <vector>

#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "configuration/Configuration.h"
#include "configuration/Inspection.h"
#include "outcome/ExitStatus.h"
#include "outcome/Report.h"

namespace Korvel::Ctl {
namespace {

struct Options {};

constexpr const char* InOrder = "in order";

void AddFinding(Report& report, const Finding& finding) {
    report.AddRow({finding.array, finding.text, finding.place});
    const std::string subject = finding.array.empty() ? "" : "array " + finding.array + ": ";
    report.AddProblem({finding.place + ": " + subject + finding.text, ExitFailed, finding.array});
}

/// @return what is hardly meant, then what the library cannot use
std::vector<Finding> FindAll(const Configuration& configuration) {
    std::vector<Finding> all = Inspect(configuration);
    for (const ConfiguredArray& array : configuration.arrays) {
        for (const std::string& fault : array.faults) {
            all.push_back({array.address, fault, array.place});
        }
    }
    return all;
}

void Run(const Options& /*options*/, Report& report) {
    const Configuration configuration = ReadConfiguration();
    report.SetColumns({{"Array", "array"}, {"Finding", "finding", InOrder}, {"Where", "place"}});
    report.SetRowsAreFindings();
    for (const std::string& fault : configuration.faults) {
        report.AddProblem({fault});
    }
    std::set<std::string> found;
    for (const Finding& finding : FindAll(configuration)) {
        AddFinding(report, finding);
        found.insert(finding.array);
    }
    for (const ConfiguredArray& array : configuration.arrays) {
        if (!found.contains(array.address)) {
            report.AddRow({array.address, InOrder, array.place});
        }
    }
    const std::string subject = "The configuration in " + configuration.source;
    if (!report.Problems().empty()) {
        report.SetSentence(subject + " has faults.");
    } else {
        report.SetSentence(subject + (report.HasRows() ? " is in order." : " is in order; it names no array."));
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
