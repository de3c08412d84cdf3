#include "CommandLine.h"
#include "Configuration.h"

namespace Korvel::Ctl {
namespace {

struct CheckOptions {};

KReport CheckConfiguration(const CheckOptions& /*options*/) {
    const Configuration configuration = ReadConfiguration();
    KReport report({{"Array", "array"}, {"Finding", "finding"}, {"Where", "place"}});
    for (const std::string& fault : configuration.faults) {
        report.AddProblem(fault);
    }
    for (const ConfiguredArray& array : configuration.arrays) {
        for (const std::string& fault : array.faults) {
            report.AddRow({array.address, fault, array.place});
            report.AddProblem(array.place + ": array " + array.address + ": " + fault);
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
    return report;
}

}  // namespace

void AddConfigCommands(CLI::App& program, CommandLine& line) {
    CLI::App& family = AddFamily(program, "config", "The arrays' configuration");
    AddCommand<CheckOptions>(
        family, line,
        {"check", "Check the configured arrays without asking them; name every fault and its place",
         "korvelctl config check"},
        [](CLI::App&, CheckOptions&) {}, CheckConfiguration);
}

}  // namespace Korvel::Ctl
