#include "ArgumentCheck.h"
#include "CommandLine.h"
#include "Confirmation.h"
#include "ServerCommands.h"
#include "VolumeSearch.h"

namespace Korvel::Ctl {
namespace {

struct FindOptions {
    std::string id;
    std::string name;
    std::string snapshot;
    Target target;
};

struct MappingOptions {
    std::string volume;
    std::string iqn;
    std::string server;
    Target target;
};

struct SnapshotOptions {
    std::string snapshot;
    bool yes = false;
    Target target;
};

struct DeleteOptions {
    std::string volume;
    bool yes = false;
    Target target;
};

KReport VolumeReport() {
    return KReport(
        {{"Array", "array"}, {"Display name", "displayName"}, {"Name", "name"}, {"ID", "id"}, {"Group", "group"}});
}

void AddVolumeRow(KReport& report, const FoundVolume& found) {
    report.AddRow({AddressOf(*found.array), found.DisplayName(), found.Name(), found.Id(), found.Group()});
}

std::string Described(const FoundVolume& found) {
    return "volume '" + found.DisplayName() + "' (" + found.Name() + ") on array " + AddressOf(*found.array);
}

KReport FindVolume(const FindOptions& options) {
    KSession session(options.target);
    const VolumeSearch search = !options.id.empty() ? SearchVolume(session, VolumeKey::Id, options.id)
                                : !options.snapshot.empty()
                                    ? SearchVolume(session, VolumeKey::Snapshot, options.snapshot)
                                    : SearchVolume(session, VolumeKey::DisplayName, options.name);
    KReport report = VolumeReport();
    for (const FoundVolume& found : search.found) {
        AddVolumeRow(report, found);
    }
    for (const std::string& problem : search.problems) {
        report.AddProblem(problem, search.found.empty() ? ExitFailed : ExitDone);
    }
    if (search.found.empty() && search.problems.empty()) {
        report.AddProblem("no such volume", ExitNotFound);
    }
    return report;
}

KReport CloneVolume(const SnapshotOptions& options) {
    CheckBodyText("snapshot name", options.snapshot);
    KSession session(options.target);
    const FoundVolume source = FindOneVolume(session, VolumeKey::Snapshot, options.snapshot);
    CheckPath("group name", AddressOf(*source.array), ClonePath, source.Group());

    FoundVolume clone{source.array, nullptr};
    Perform(*source.array, "clone snapshot '" + options.snapshot + "'", [&] {
        const int status = source.array->CloneVolume(source.Group(), options.snapshot, clone.volume);
        if (status == KStatusNotFound) {
            throw KFailure(ExitFailed, "array " + AddressOf(*source.array) +
                                           " made the clone, but does not list it: it cannot be named here");
        }
        return status;
    });
    KReport report = VolumeReport();
    report.SetSentence("Cloned " + Described(source) + " from snapshot '" + options.snapshot + "'.");
    AddVolumeRow(report, clone);
    return report;
}

using MappingOperation = int (KArray::*)(const std::string&, const std::string&);

KReport ChangeMapping(const MappingOptions& options, const std::string& verb, const char* sentence,
                      MappingOperation operation) {
    if (options.iqn.empty()) {
        CheckBodyText("server ID", options.server);
        CheckPath("server ID", "", AttachPath, options.server);
    } else {
        CheckBodyText("initiator name", options.iqn);
    }
    KSession session(options.target);
    const FoundVolume found = FindOneVolume(session, VolumeKey::DisplayName, options.volume);
    const std::string address = AddressOf(*found.array);
    CheckBodyText("volume name", found.Name());
    CheckPath("volume name", address, DetachPath, found.Name());
    const std::string server = options.iqn.empty() ? options.server : FindOrRegisterServer(*found.array, options.iqn);
    CheckBodyText("server ID", server);
    CheckPath("server ID", address, AttachPath, server);

    Perform(*found.array, verb + " " + Described(found),
            [&] { return (found.array->*operation)(found.Name(), server); });
    KReport report({{"Array", "array"}, {"Display name", "displayName"}, {"Name", "name"}, {"Server ID", "serverId"}});
    report.SetSentence(sentence);
    report.AddRow({address, found.DisplayName(), found.Name(), server});
    return report;
}

KReport AttachVolume(const MappingOptions& options) {
    return ChangeMapping(options, "attach", "The volume is mapped to the server.", &KArray::AttachVolume);
}

KReport DetachVolume(const MappingOptions& options) {
    return ChangeMapping(options, "detach", "The volume is no longer mapped to the server.", &KArray::DetachVolume);
}

KReport DeleteVolume(const DeleteOptions& options) {
    RequireConfirmable(options.yes);
    KSession session(options.target);
    const FoundVolume found = FindOneVolume(session, VolumeKey::DisplayName, options.volume);
    CheckPath("volume name", AddressOf(*found.array), DeleteVolumePath, found.Name());
    KReport report = VolumeReport();
    AddVolumeRow(report, found);  // before the deletion, which takes the volume object with it
    report.SetSentence("Deleted " + Described(found) + ".");

    Confirm(options.yes, "This deletes " + Described(found) + " with all its data.");
    Perform(*found.array, "delete " + Described(found), [&] { return found.array->DeleteVolume(found.Name()); });
    return report;
}

KReport RollBackVolume(const SnapshotOptions& options) {
    RequireConfirmable(options.yes);
    CheckBodyText("snapshot name", options.snapshot);
    KSession session(options.target);
    const FoundVolume found = FindOneVolume(session, VolumeKey::Snapshot, options.snapshot);
    CheckPath("group name", AddressOf(*found.array), RollbackPath, found.Group());

    Confirm(options.yes, "This takes the whole group '" + found.Group() + "' of " + Described(found) +
                             " back to snapshot '" + options.snapshot + "'; what was written since is lost.");
    Perform(*found.array, "roll back to snapshot '" + options.snapshot + "'",
            [&] { return found.array->ResyncVolume(options.snapshot, found.volume); });
    KReport report = VolumeReport();
    report.SetSentence("The group '" + found.Group() + "' is rolled back to snapshot '" + options.snapshot + "'.");
    AddVolumeRow(report, found);
    return report;
}

void DeclareFind(CLI::App& command, FindOptions& options) {
    CLI::Option_group* keys = command.add_option_group("key", "Exactly one of these");
    keys->add_option("--id", options.id, "The volume's IEEE identifier")->type_name("IEEE-ID");
    keys->add_option("--name", options.name, "The volume's display name")->type_name("DISPLAY-NAME");
    keys->add_option("--snapshot", options.snapshot, "The name of one of its snapshots")->type_name("SNAPSHOT");
    keys->require_option(1);
    AddTargetOptions(command, options.target);
}

void DeclareMapping(CLI::App& command, MappingOptions& options) {
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

void DeclareSnapshot(CLI::App& command, SnapshotOptions& options) {
    command.add_option("--snapshot", options.snapshot, "The snapshot's name")->type_name("SNAPSHOT")->required();
    AddTargetOptions(command, options.target);
}

}  // namespace

void AddVolumeCommands(CLI::App& program, CommandLine& line) {
    CLI::App& family = AddFamily(program, "volume", "The volumes of the arrays");
    AddCommand<FindOptions>(family, line, {"find", "Find a volume", "korvelctl volume find --name Payroll"},
                            DeclareFind, FindVolume);
    AddCommand<SnapshotOptions>(
        family, line,
        {"clone", "Make a new volume from a snapshot", "korvelctl volume clone --snapshot snap_4711_vol-1"},
        DeclareSnapshot, CloneVolume);
    AddCommand<MappingOptions>(
        family, line,
        {"attach", "Map a volume to a host", "korvelctl volume attach Payroll --iqn iqn.2024-01.com.example:host1"},
        DeclareMapping, AttachVolume);
    AddCommand<MappingOptions>(
        family, line,
        {"detach", "Unmap a volume from a host", "korvelctl volume detach Payroll --iqn iqn.2024-01.com.example:host1"},
        DeclareMapping, DetachVolume);
    AddCommand<DeleteOptions>(
        family, line, {"delete", "Delete a volume", "korvelctl volume delete Payroll --array 10.0.0.21"},
        [](CLI::App& command, DeleteOptions& options) {
            command.add_option("VOLUME", options.volume, "The volume's display name")->required();
            AddYesOption(command, options.yes);
            AddTargetOptions(command, options.target);
        },
        DeleteVolume);
    AddCommand<SnapshotOptions>(
        family, line,
        {"rollback", "Take a volume's consistency group back to a snapshot",
         "korvelctl volume rollback --snapshot snap_4711_vol-1"},
        [](CLI::App& command, SnapshotOptions& options) {
            DeclareSnapshot(command, options);
            AddYesOption(command, options.yes);
        },
        RollBackVolume);
}

}  // namespace Korvel::Ctl
