#pragma once

#include <functional>
#include <string>

#include "Logger.h"

namespace Korvel {

/// Hands out what was logged since the last call and forgets it: one line a record, its level and its text. A record of
/// another module than the library's own has the module in front.
KORVEL_LOGGER_API std::string TakeRecords();

/// Has something done whenever a record is written, before it is; empty: nothing any more.
KORVEL_LOGGER_API void WatchRecords(std::function<void()> watcher);

}  // namespace Korvel
