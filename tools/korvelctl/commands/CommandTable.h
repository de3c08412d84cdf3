#pragma once

#include <CLI/CLI.hpp>

#include "commands/CommandLine.h"

namespace Korvel::Ctl {

/// Declares the whole command line: the program's options, every family and every command. Help, and whatever else
/// tells of the commands, is made from the parser that this fills.
/// @param program the parser
/// @param line receives what the parser reads; has to outlive it
void DeclareCommands(CLI::App& program, CommandLine& line);

/// \name The commands.
/// @{
void AddArrayList(CLI::App& family, CommandLine& line);
void AddArrayValidate(CLI::App& family, CommandLine& line);
void AddVolumeList(CLI::App& family, CommandLine& line);
void AddVolumeFind(CLI::App& family, CommandLine& line);
void AddVolumeClone(CLI::App& family, CommandLine& line);
void AddVolumeAttach(CLI::App& family, CommandLine& line);
void AddVolumeDetach(CLI::App& family, CommandLine& line);
void AddVolumeDelete(CLI::App& family, CommandLine& line);
void AddVolumeRollback(CLI::App& family, CommandLine& line);
void AddSnapshotList(CLI::App& family, CommandLine& line);
void AddSnapshotCreate(CLI::App& family, CommandLine& line);
void AddSnapshotDelete(CLI::App& family, CommandLine& line);
void AddGroupList(CLI::App& family, CommandLine& line);
void AddServerList(CLI::App& family, CommandLine& line);
void AddServerFind(CLI::App& family, CommandLine& line);
void AddConfigAdd(CLI::App& family, CommandLine& line);
void AddConfigSetKey(CLI::App& family, CommandLine& line);
void AddConfigRemove(CLI::App& family, CommandLine& line);
void AddConfigCheck(CLI::App& family, CommandLine& line);
void AddCompletion(CLI::App& program, CommandLine& line);
void AddReferenceFiles(CLI::App& program, CommandLine& line);
/// @}

}  // namespace Korvel::Ctl
