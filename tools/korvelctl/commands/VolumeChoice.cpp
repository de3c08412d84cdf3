#include "commands/VolumeChoice.h"

namespace Korvel::Ctl {

std::vector<WantedVolume> VolumeChoice::Wanted() const {
    std::vector<WantedVolume> wanted;
    for (const std::string& name : names) {
        wanted.push_back({VolumeKey::DisplayName, name});
    }
    for (const std::string& id : ids) {
        wanted.push_back({VolumeKey::Id, id});
    }
    return wanted;
}

void AddVolumeChoice(CLI::App& command, VolumeChoice& choice) {
    CLI::Option_group* group = command.add_option_group("volume", "Exactly one of these");
    group->add_option("VOLUME", choice.names, "The volume's display name")->type_name("VOLUME")->expected(1);
    group->add_option("--id", choice.ids, "The volume's IEEE identifier")->type_name("IEEE-ID")->expected(1);
    group->require_option(1);
}

void AddVolumesChoice(CLI::App& command, VolumeChoice& choice) {
    CLI::Option_group* group = command.add_option_group("volume", "At least one of these");
    group->add_option("VOLUME", choice.names, "The volumes' display names")->type_name("VOLUME");
    group->add_option("--id", choice.ids, "A volume's IEEE identifier; may be given more than once")
        ->type_name("IEEE-ID")
        ->allow_extra_args(false);
    group->require_option(1, 2);
}

}  // namespace Korvel::Ctl
