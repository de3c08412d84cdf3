#pragma once

#include <optional>
#include <string>

#include "array/Fill.h"

namespace Korvel::Sim {

/// What the command line asks for.
struct Options {
    std::string address = "127.0.0.1";  ///< address of the arrays: loopback or private
    int port = 0;                       ///< port of the first array, the next ones follow; 0: any free ports
    int controlPort = 0;                ///< port of the control interface; 0: any free one
    std::size_t arrays = 1;             ///< number of arrays
    Fill fill;                          ///< what each array holds at start
    std::size_t journal = 100000;       ///< requests the journal keeps
    std::string regFile;                ///< file for the registry entries, empty for none
    std::string state;                  ///< file with what the arrays hold at start, empty for none
    std::string saveState;              ///< file for what they hold at the end, empty for none

    /// Tells whether other machines can reach the arrays.
    bool IsOpen() const;

    /// Reads the command line. Returns nothing when there is nothing left to do; then `exitCode` is 0 after --help and
    /// --version, which go to standard output, or 64 after a wrong option, which is named on standard error.
    static std::optional<Options> Parse(int argc, const char* const* argv, int& exitCode);
};

}  // namespace Korvel::Sim
