#pragma once

#include <string>

namespace Korvel::Ctl {

/// Where an access key comes from when it is not the registry. There is no option that takes the key itself: every
/// user of a machine can read the arguments of its processes.
struct KeySource {
    std::string file;
    bool standardInput = false;

    /// @return whether a source was named
    bool IsGiven() const { return standardInput || !file.empty(); }
};

/// Reads the access key: the first line of the file or of standard input, which on a terminal is asked for.
/// A file may begin with a byte-order mark and may be UTF-16.
/// @throws Failure when there is none or it cannot be sent
std::string ReadAccessKey(const KeySource& source);

/// Reads an access key that is to be stored: as ReadAccessKey(), and without a source it is asked for on the terminal.
/// @throws Failure when there is none, it cannot be sent, or there is nobody to ask
std::string ReadNewAccessKey(KeySource source);

}  // namespace Korvel::Ctl
