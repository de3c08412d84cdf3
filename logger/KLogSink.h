#pragma once

#include <string_view>

#include "KLogOutput.h"

namespace Korvel {

/// Where the process's log records go and which of them.
///
/// KORVEL_LOG_FILE names the file (standard error if unset), KORVEL_LOG_LEVEL the highest level that is written (0 if
/// unset). Both are read at the first record. It needs no destructor, so records of other statics' destructors find it
/// alive.
class KLogSink {
public:
    /// @throws std::bad_alloc
    static const KLogSink& Instance();

    /// @return whether records of this level are written
    bool Takes(int level) const noexcept { return level <= highestLevel; }

    /// Writes one record, in one piece; if the file takes none, to standard error.
    /// @param record the record with its line feed
    void Write(std::string_view record) const noexcept;

private:
    KLogSink();

    int highestLevel;
    KLogOutput output;
};

}  // namespace Korvel
