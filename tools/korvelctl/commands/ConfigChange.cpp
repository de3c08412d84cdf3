#include <string>

#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "configuration/AccessKey.h"
#include "configuration/Configuration.h"
#include "configuration/Editing.h"
#include "outcome/Report.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    std::string address;
    KeySource key;
};

void Show(Report& report, const std::string& address, const std::string& change) {
    report.SetColumns({{"Array", "array"}, {"Change", "change"}, {"Where", "place"}});
    report.AddRow({address, change, LoadConfiguration().source});
}

void Add(const Options& options, Report& report) {
    CheckAddress(options.address);
    AddConfiguredArray(options.address, ReadNewAccessKey(options.key));
    Show(report, options.address, "added");
}

void SetKey(const Options& options, Report& report) {
    CheckAddress(options.address);
    SetConfiguredKey(options.address, ReadNewAccessKey(options.key));
    Show(report, options.address, "access key replaced");
}

/// The address is not judged: what the library cannot use has to go, too.
void Remove(const Options& options, Report& report) {
    CheckPresent("address", options.address);
    if (options.address.find('\\') != std::string::npos) {
        RefuseUnconfigured(options.address);  // it would lead to another key
    }
    RemoveConfiguredArray(options.address);
    Show(report, options.address, "removed");
}

void DeclareAddress(CLI::App& command, Options& options) {
    command.add_option("ADDRESS", options.address, "The array's address or host name")->required();
}

void DeclareWithKey(CLI::App& command, Options& options) {
    DeclareAddress(command, options);
    AddKeyOptions(command, options.key, "; without either option it is asked for");
}

}  // namespace

void AddConfigAdd(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line,
        {"add", "Configure an array; it is not asked", "korvelctl config add 10.0.0.21 --key-file new-array.key"},
        DeclareWithKey, Add);
}

void AddConfigSetKey(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(family, line,
                        {"set-key", "Replace the access key of a configured array; the array is not asked",
                         "korvelctl config set-key 10.0.0.21 --key-file new.key"},
                        DeclareWithKey, SetKey);
}

void AddConfigRemove(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line,
        {"remove", "Remove an array with its access key from the configuration", "korvelctl config remove 10.0.0.21"},
        DeclareAddress, Remove);
}

}  // namespace Korvel::Ctl
