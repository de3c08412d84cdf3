#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>

#include "KReport.h"
#include "KSession.h"

namespace Korvel::Ctl {

/// What the command line asks for: the options every command has, and the command.
struct CommandLine {
    bool asJson = false;
    std::string logFile;
    std::string logLevel;
    std::function<KReport()> action;
};

/// How a command presents itself.
struct CommandText {
    const char* name;
    const char* description;
    const char* example;
};

/// Adds a family of commands, of which one is to be given.
CLI::App& AddFamily(CLI::App& program, const char* name, const char* description);

/// Adds the options that choose the arrays a command asks.
void AddTargetOptions(CLI::App& command, Target& target);

/// Adds the options for an access key that is not the registry's.
void AddKeyOptions(CLI::App& command, KeySource& key);

/// Adds --yes to a command that destroys something.
void AddYesOption(CLI::App& command, bool& yes);

/// Adds one command. Nothing is carried out while the command line is read: the command becomes its action.
/// @param declare declares the command's arguments: takes the parser of the command and an Options to fill
/// @param run carries the command out
template <typename Options, typename Declare>
void AddCommand(CLI::App& family, CommandLine& line, const CommandText& text, Declare declare,
                KReport (*run)(const Options&)) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = family.add_subcommand(text.name, text.description);
    command->footer(std::string("Example:\n  ") + text.example);
    declare(*command, *options);
    command->callback([&line, options, run] { line.action = [options, run] { return run(*options); }; });
}

/// The families, each in a source file of its own.
void AddArrayCommands(CLI::App& program, CommandLine& line);
void AddVolumeCommands(CLI::App& program, CommandLine& line);
void AddSnapshotCommands(CLI::App& program, CommandLine& line);
void AddServerCommands(CLI::App& program, CommandLine& line);
void AddConfigCommands(CLI::App& program, CommandLine& line);

}  // namespace Korvel::Ctl
