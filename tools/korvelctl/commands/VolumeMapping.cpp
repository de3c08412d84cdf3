#include <KorvelAccessLibrary.h>

#include <string>

#include "commands/Command.h"
#include "commands/CommandTable.h"
#include "commands/VolumeReport.h"
#include "library/Operation.h"
#include "library/ServerSearch.h"
#include "library/Session.h"
#include "library/VolumeSearch.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    std::string volume;
    std::string iqn;
    std::string server;
    Target target;
};

using MappingOperation = int (KArray::*)(const std::string&, const std::string&);

/// What the two commands share.
void ChangeMapping(const Options& options, Report& report, const std::string& verb, const char* sentence,
                   MappingOperation operation) {
    if (options.iqn.empty()) {
        CheckBodyText("server ID", options.server);
        CheckPath("server ID", "", AttachPath, options.server);
    } else {
        CheckBodyText("initiator name", options.iqn);
    }
    Session session(options.target);
    const FoundVolume found = FindOneVolume(session, VolumeKey::DisplayName, options.volume);
    const std::string address = AddressOf(*found.array);
    CheckBodyText("volume name", found.Name());
    CheckPath("volume name", address, DetachPath, found.Name());
    const std::string server = options.iqn.empty() ? options.server : FindOrRegisterServer(*found.array, options.iqn);
    CheckBodyText("server ID", server);
    CheckPath("server ID", address, AttachPath, server);

    Perform(*found.array, verb + " " + Described(found),
            [&] { return (found.array->*operation)(found.Name(), server); });
    report.SetColumns(
        {{"Array", "array"}, {"Display name", "displayName"}, {"Name", "name"}, {"Server ID", "serverId"}});
    report.SetSentence(sentence);
    report.AddRow({address, found.DisplayName(), found.Name(), server});
}

void Attach(const Options& options, Report& report) {
    ChangeMapping(options, report, "attach", "The volume is mapped to the server.", &KArray::AttachVolume);
}

void Detach(const Options& options, Report& report) {
    ChangeMapping(options, report, "detach", "The volume is no longer mapped to the server.", &KArray::DetachVolume);
}

void Declare(CLI::App& command, Options& options) {
    command.add_option("VOLUME", options.volume, "The volume's display name")->required();
    CLI::Option_group* servers = command.add_option_group("server", "Exactly one of these");
    servers
        ->add_option("--iqn", options.iqn,
                     "The host's iSCSI initiator name; the array registers a host it does not know")
        ->type_name("IQN");
    servers->add_option("--server", options.server, "The array's identifier of the host")->type_name("ID");
    servers->require_option(1);
    AddTargetOptions(command, options.target);
}

}  // namespace

void AddVolumeAttach(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line,
        {"attach", "Map a volume to a host", "korvelctl volume attach Payroll --iqn iqn.2024-01.com.example:host1"},
        Declare, Attach);
}

void AddVolumeDetach(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line,
        {"detach", "Unmap a volume from a host", "korvelctl volume detach Payroll --iqn iqn.2024-01.com.example:host1"},
        Declare, Detach);
}

}  // namespace Korvel::Ctl
