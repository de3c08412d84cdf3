#include "ServerCommands.h"

#include "ArgumentCheck.h"
#include "CommandLine.h"

namespace Korvel::Ctl {
namespace {

struct FindOptions {
    std::string iqn;
    Target target;
};

KReport FindServer(const FindOptions& options) {
    CheckBodyText("initiator name", options.iqn);
    KSession session(options.target);
    session.RequireArrays();
    // The array registers a host it does not know: that must not happen on an array nobody thought of.
    if (options.target.addresses.empty() && session.Arrays().size() > 1) {
        throw KFailure(ExitWrongUsage,
                       "more than one array is configured, and an array registers a host it does not know: name the "
                       "arrays with --array");
    }
    KReport report({{"Array", "array"}, {"Initiator name", "iqn"}, {"Server ID", "serverId"}});
    for (KArray* array : session.Arrays()) {
        report.AddRow({AddressOf(*array), options.iqn, FindOrRegisterServer(*array, options.iqn)});
    }
    return report;
}

}  // namespace

std::string FindOrRegisterServer(KArray& array, const std::string& iqn) {
    CheckBodyText("initiator name", iqn);
    std::string serverID;
    Perform(array, "find or register the host " + iqn, [&] {
        return LookUp(array, &KArray::GetServerIDByIQN, &KArray::GetServerIDByIQNFromArray, iqn, serverID);
    });
    return serverID;
}

void AddServerCommands(CLI::App& program, CommandLine& line) {
    CLI::App& family = AddFamily(program, "server", "The hosts an array knows");
    AddCommand<FindOptions>(
        family, line,
        {"find", "Find a host by its iSCSI initiator name. The array registers the host if it does not know it",
         "korvelctl server find iqn.2024-01.com.example:host1 --array 10.0.0.21"},
        [](CLI::App& command, FindOptions& options) {
            command.add_option("IQN", options.iqn, "The host's iSCSI initiator name")->required();
            AddTargetOptions(command, options.target);
        },
        FindServer);
}

}  // namespace Korvel::Ctl
