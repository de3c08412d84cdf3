#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "commands/CommandLine.h"
#include "configuration/AccessKey.h"
#include "library/Target.h"
#include "outcome/Report.h"

namespace Korvel::Ctl {

/// How a command presents itself. Whatever is told about a command (its help, its page, its completion) is read from
/// the parser it is added to.
struct CommandText {
    const char* name;
    const char* description;
    const char* example;
};

/// Adds the options that choose the arrays a command asks.
void AddTargetOptions(CLI::App& command, Target& target);

/// Adds the options for an access key that is not the registry's.
/// @param instead what the help says after where the key is read from
void AddKeyOptions(CLI::App& command, KeySource& key, const char* instead = ", not the registry");

/// Adds --yes to a command that destroys something.
void AddYesOption(CLI::App& command, bool& yes);

/// Adds one command. Nothing is carried out while the command line is read: the command becomes its action.
/// @param family the command's family; owned by the program
/// @param line receives the action when the command is given; has to outlive the parser
/// @param text the command's name and what its help says
/// @param declare declares the command's arguments: takes the parser of the command and an Options to fill
/// @param run carries the command out and fills the report; throws Failure when nothing can be shown
template <typename Options, typename Declare>
void AddCommand(CLI::App& family, CommandLine& line, const CommandText& text, Declare declare,
                void (*run)(const Options&, Report&)) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = family.add_subcommand(text.name, text.description);
    command->footer(std::string("Example:\n  ") + text.example);
    declare(*command, *options);
    command->callback(
        [&line, options, run] { line.action = [options, run](Report& report) { run(*options, report); }; });
}

}  // namespace Korvel::Ctl
