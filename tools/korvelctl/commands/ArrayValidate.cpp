#include <KorvelAccessLibrary.h>

#include <algorithm>
#include <exception>
#include <string>

#include "commands/Command.h"
#include "commands/CommandTable.h"
#include "configuration/AccessKey.h"
#include "configuration/Configuration.h"
#include "library/Library.h"
#include "library/Operation.h"
#include "outcome/Failure.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    std::string address;
    KeySource key;
};

std::string ConfiguredKey(const std::string& address) {
    const Configuration configuration = ReadConfiguration();
    const auto array = std::find_if(configuration.arrays.begin(), configuration.arrays.end(),
                                    [&address](const ConfiguredArray& entry) { return entry.address == address; });
    if (array == configuration.arrays.end()) {
        throw configuration.faults.empty()
            ? Failure(ExitNotFound,
                      "no array " + address + " is configured: give its access key with --key-file or --key-stdin")
            : Failure(ExitFailed, configuration.FirstFault());
    }
    if (!array->faults.empty()) {
        throw Failure(ExitFailed, array->place + ": " + array->faults.front(), address);
    }
    return array->accessKey;
}

void Run(const Options& options, Report& report) {
    CheckAddress(options.address);
    std::string address = options.address;
    std::string accessKey = options.key.IsGiven() ? ReadAccessKey(options.key) : ConfiguredKey(address);

    const Library library;
    KAccessLayer layer;
    int status = KStatusFailure;
    try {
        status = layer.ValidateArray(address, accessKey);
    } catch (const std::exception& error) {
        throw Failure(ExitFailed, "array " + address + ": " + Explain(error), address);
    }
    if (status != KStatusSuccess) {
        throw Failure(ExitFailed,
                      address + " replied, but the reply holds no drive list: this does not seem to be an array",
                      address);
    }
    report.SetColumns({{"Array", "array"}, {"Access key", "accessKey"}});
    report.AddRow({address, "accepted"});
}

}  // namespace

void AddArrayValidate(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line,
        {"validate", "Check that an array accepts an access key; the array need not be configured",
         "korvelctl array validate 10.0.0.21 --key-file new-array.key"},
        [](CLI::App& command, Options& options) {
            command.add_option("ADDRESS", options.address, "The array's address or host name")->required();
            AddKeyOptions(command, options.key);
        },
        Run);
}

}  // namespace Korvel::Ctl
