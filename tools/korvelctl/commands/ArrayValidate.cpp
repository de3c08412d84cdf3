#include <KorvelAccessLibrary.h>

#include <memory>
#include <string>

#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "configuration/AccessKey.h"
#include "configuration/Configuration.h"
#include "library/Ask.h"
#include "library/Library.h"
#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"
#include "outcome/Report.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    std::string address;
    KeySource key;
};

std::string ConfiguredKey(const std::string& address) {
    const Configuration configuration = ReadConfiguration();
    const ConfiguredArray* array = configuration.Find(address);
    if (array == nullptr) {
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

/// Needs no array of the registry and so no session; the layer belongs to the thread that asks.
void Run(const Options& options, Report& report) {
    CheckAddress(options.address);
    const std::string accessKey = options.key.IsGiven() ? ReadAccessKey(options.key) : ConfiguredKey(options.address);
    const Library library;
    const auto array = std::make_shared<KArray>(options.address, accessKey);
    const int status = AskOne(array, {"list its drives"}, [accessKey](KArray& asked) {
        KAccessLayer layer;
        std::string address = AddressOf(asked);
        std::string key = accessKey;
        return layer.ValidateArray(address, key);
    });
    if (status != KStatusSuccess) {
        throw Failure(
            ExitFailed,
            options.address + " replied, but the reply holds no drive list: this does not seem to be an array",
            options.address);
    }
    report.SetColumns({{"Array", "array"}, {"Access key", "accessKey", "accepted"}});
    report.AddRow({options.address, "accepted"});
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
