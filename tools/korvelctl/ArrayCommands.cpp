#include <algorithm>

#include "ArgumentCheck.h"
#include "CommandLine.h"
#include "Configuration.h"

namespace Korvel::Ctl {
namespace {

struct ListOptions {};

struct ValidateOptions {
    std::string address;
    KeySource key;
};

KReport ListArrays(const ListOptions& /*options*/) {
    const KSession session{Target{}};
    KReport report(std::vector<Column>{{"Array", "array"}});
    for (KArray* array : session.Arrays()) {
        report.AddRow({AddressOf(*array)});
    }
    if (!session.Problem().empty()) {
        report.AddProblem(session.Problem());
    } else if (!report.HasRows()) {
        report.SetSentence("No array is configured.");
    }
    return report;
}

std::string ConfiguredKey(const std::string& address) {
    const Configuration configuration = ReadConfiguration();
    const auto array = std::find_if(configuration.arrays.begin(), configuration.arrays.end(),
                                    [&address](const ConfiguredArray& entry) { return entry.address == address; });
    if (array == configuration.arrays.end()) {
        throw configuration.faults.empty()
            ? KFailure(ExitNotFound,
                       "no array " + address + " is configured: give its access key with --key-file or --key-stdin")
            : KFailure(ExitFailed, configuration.FirstFault());
    }
    if (!array->faults.empty()) {
        throw KFailure(ExitFailed, array->place + ": " + array->faults.front());
    }
    return array->accessKey;
}

KReport ValidateArray(const ValidateOptions& options) {
    CheckAddress(options.address);
    std::string address = options.address;
    std::string accessKey = options.key.IsGiven() ? ReadAccessKey(options.key) : ConfiguredKey(address);

    const KLibrary library;
    KAccessLayer layer;
    int status = KStatusFailure;
    try {
        status = layer.ValidateArray(address, accessKey);
    } catch (const std::exception& error) {
        throw KFailure(ExitFailed, "array " + address + ": " + Explain(error));
    }
    if (status != KStatusSuccess) {
        throw KFailure(ExitFailed,
                       address + " replied, but the reply holds no drive list: this does not seem to be an array");
    }
    KReport report({{"Array", "array"}, {"Access key", "accessKey"}});
    report.AddRow({address, "accepted"});
    return report;
}

}  // namespace

void AddArrayCommands(CLI::App& program, CommandLine& line) {
    CLI::App& family = AddFamily(program, "array", "The configured arrays");
    AddCommand<ListOptions>(
        family, line, {"list", "List the configured arrays", "korvelctl array list"}, [](CLI::App&, ListOptions&) {},
        ListArrays);
    AddCommand<ValidateOptions>(
        family, line,
        {"validate", "Check that an array accepts an access key; the array need not be configured",
         "korvelctl array validate 10.0.0.21 --key-file new-array.key"},
        [](CLI::App& command, ValidateOptions& options) {
            command.add_option("ADDRESS", options.address, "The array's address or host name")->required();
            AddKeyOptions(command, options.key);
        },
        ValidateArray);
}

}  // namespace Korvel::Ctl
