#include "commands/Command.h"

#include "configuration/AccessKey.h"

namespace Korvel::Ctl {

void AddTargetOptions(CLI::App& command, Target& target) {
    command.add_option("--array", target.addresses, "Ask only this configured array; may be given more than once")
        ->type_name("ADDRESS")
        ->allow_extra_args(false);
    AddKeyOptions(command, target.key);
}

void AddKeyOptions(CLI::App& command, KeySource& key, const char* instead) {
    CLI::Option* file =
        command.add_option("--key-file", key.file, std::string("Read the access key from a file") + instead)
            ->type_name("FILE");
    command
        .add_flag("--key-stdin", key.standardInput, std::string("Read the access key from standard input") + instead)
        ->excludes(file);
}

void AddYesOption(CLI::App& command, bool& yes) {
    command.add_flag("--yes", yes, "Do not ask; needed when there is no terminal");
}

}  // namespace Korvel::Ctl
