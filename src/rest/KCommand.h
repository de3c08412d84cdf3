#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>

#include "foundation/KFormat.h"

namespace Korvel {

/// The commands, numbered as the reader of their replies knows them.
enum KCommandAction : int {
    KCommandCreateSnapshotSet = 0,
    KCommandDeleteSnapshot = 1,
    KCommandCreateServer = 2,
    KCommandCloneVolume = 3,
    KCommandAttachVolume = 4,
    KCommandDetachVolume = 5,
    KCommandDeleteVolume = 6,
    KCommandResyncVolume = 7,
};

/// One command as data. Its arguments are the operation's read-only texts in their order; none of them may be empty.
struct KCommand {
    KFormat<std::string> entryLine;
    std::size_t entryArgument;    ///< which argument the entry line shows
    const char* invalidArgument;  ///< the refusal's text
    const char* method;
    KPartialFormat<std::string> path;
    std::size_t pathArgument;  ///< which argument goes into the path, as it stands
    const char* body;          ///< {0}, {1}, … stand for the arguments; null: no body and no post options
    const char* xPathID;       ///< the response element
    const char* nameElement;   ///< what the reply is asked for besides its status; null: nothing
    KFormat<long> failureText;
    KFormat<int> exitLine;
};

/// @return the row of a command
const KCommand& CommandOf(KCommandAction action);

/// @return the element that a command's reply is asked for besides its status; null when there is none, and for a
/// number
///         that is no command
const char* NameElementOf(int action);

/// Puts the arguments of a command into its body, whole and unencoded; empty for a command without one.
std::string FillBody(const char* body, std::initializer_list<const std::string*> arguments);

}  // namespace Korvel
