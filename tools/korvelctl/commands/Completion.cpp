#include <CLI/CLI.hpp>
#include <string>
#include <utility>
#include <vector>

#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "commands/Shells.h"
#include "completion/Vocabulary.h"
#include "outcome/Report.h"
#include "tree/Description.h"

namespace Korvel::Ctl {
namespace {

struct Options {
    std::string shell;
    std::string script;
};

/// For scripts alone: who reads it wants it as it stands.
void Run(const Options& options, Report& report) {
    report.SetColumns({{"Shell", "shell"}, {"Script", "script"}});
    report.AddRow({options.shell, options.script});
}

}  // namespace

void AddCompletion(CLI::App& program, CommandLine& line) {
    AddCommand<Options>(
        program, line,
        {"completion", "Write the script that completes korvelctl's command line in a shell",
         "source <(korvelctl completion bash)"},
        [&line](CLI::App& command, Options& options) {
            std::vector<std::string> names;
            for (const Shell& shell : Shells) {
                names.emplace_back(shell.name);
            }
            command
                .add_option_function<std::string>(
                    "SHELL",
                    [&](const std::string& name) {
                        options.shell = name;
                        for (const Shell& shell : Shells) {
                            if (name == shell.name) {
                                options.script = shell.makeScript(
                                    Reference::MakeVocabulary(Reference::Describe(*command.get_parent())));
                            }
                        }
                        line.document = options.script;
                    },
                    "The shell: bash, zsh, fish or powershell")
                ->required()
                ->check(CLI::IsMember(names));
        },
        Run);
}

}  // namespace Korvel::Ctl
