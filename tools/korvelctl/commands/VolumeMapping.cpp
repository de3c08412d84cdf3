#include <KorvelAccessLibrary.h>

#include <optional>
#include <string>

#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "commands/VolumeChoice.h"
#include "library/Ask.h"
#include "library/Explanation.h"
#include "library/Purpose.h"
#include "library/ServerSearch.h"
#include "library/Session.h"
#include "library/Target.h"
#include "library/VolumeSearch.h"
#include "outcome/Report.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    VolumeChoice volume;
    std::string iqn;
    std::string server;
    Target target;
};

/// What sets the two commands apart.
struct Mapping {
    const char* verb;
    const char* sentence;
    int (KArray::*operation)(const std::string& volName, const std::string& serverID);
};

/// @return the array's identifier of the host; none when the report was told why
std::optional<std::string> ServerOf(const Options& options, const SharedArray& array, Report& report) {
    if (options.iqn.empty()) {
        return options.server;
    }
    std::optional<std::string> found;
    FindOrRegisterServer({array}, options.iqn, report,
                         [&found](const SharedArray&, const std::string& id) { found = id; });
    return found;
}

void Change(const Options& options, Report& report, const Mapping& mapping) {
    if (options.iqn.empty()) {
        CheckBodyText("server ID", options.server);
        CheckPath("server ID", "", AttachPath, options.server);
    } else {
        CheckBodyText("initiator name", options.iqn);
    }
    Session session(options.target);
    const FoundVolume found = FindVolumes(session, options.volume.Wanted()).front();
    const std::string address = found.Address();
    CheckBodyText("volume name", found.volume.name);
    CheckPath("volume name", address, DetachPath, found.volume.name);
    const std::optional<std::string> known = ServerOf(options, found.array, report);
    if (!known) {
        return;
    }
    const std::string& server = *known;
    CheckBodyText("server ID", server);
    CheckPath("server ID", address, AttachPath, server);

    const Purpose purpose{std::string(mapping.verb) + " " + found.Described(), NotListed};
    AskOne(found.array, purpose, [purpose, mapping, server, volume = found.volume.name](KArray& array) {
        const int status = (array.*mapping.operation)(volume, server);
        RequireSuccess(status, AddressOf(array), purpose);
        return status;
    });
    report.SetColumns(
        {{"Array", "array"}, {"Display name", "displayName"}, {"Name", "name"}, {"Server ID", "serverId"}});
    report.SetSentence(mapping.sentence);
    report.AddRow({address, found.volume.displayName, found.volume.name, server});
}

void Attach(const Options& options, Report& report) {
    Change(options, report, {"attach", "The volume is mapped to the server.", &KArray::AttachVolume});
}

void Detach(const Options& options, Report& report) {
    Change(options, report, {"detach", "The volume is no longer mapped to the server.", &KArray::DetachVolume});
}

void Declare(CLI::App& command, Options& options) {
    AddVolumeChoice(command, options.volume);
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
