#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>

#include "foundation/KFormat.h"
#include "xml/KCommandAction.h"

namespace Korvel {

/// One command as data. Its arguments are the operation's read-only texts in their order; none of them may be empty.
struct KCommand {
    KCommandAction action;
    std::size_t arguments;  ///< how many the operation has
    KFormat<std::string> entryLine;
    std::size_t entryArgument;    ///< which argument the entry line shows
    const char* invalidArgument;  ///< the refusal's text
    const char* method;
    KPartialFormat<std::string> path;
    std::size_t pathArgument;  ///< which argument goes into the path, as it stands
    const char* body;          ///< {0}, {1}, … stand for the arguments; null: no body and no post options
    const char* xPathID;       ///< the response element
    KFormat<long> failureText;
    KFormat<int> exitLine;
};

/// @return the row of a command
const KCommand& CommandOf(KCommandAction action);

/// Puts the arguments of a command into its body, whole and unencoded; empty for a command without one.
std::string FillBody(const char* body, std::initializer_list<const std::string*> arguments);

}  // namespace Korvel
