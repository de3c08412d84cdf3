#pragma once

#include "Logger.h"
#include "foundation/KFormat.h"

namespace Korvel {

/// The levels that the library writes, and no others.
enum KLogLevel : int {
    KLogLevelError = 0,
    KLogLevelEvent = 2,
    KLogLevelTrace = 3,
    KLogLevelDetail = 4,
};

/// Who writes a record: the library itself, save for one line that it writes in the provider's name.
inline constexpr const char* libraryModule = "Korvel.KAccessLibrary";
inline constexpr const char* providerModule = "Korvel.VssProvider";

/// Hands one record to the logging library, which does not change the texts although its declaration lets it.
template <typename... Arguments>
void LogRecord(KLogLevel level, const char* module, KFormatFor<Arguments...> format, const Arguments&... arguments) {
    Logger::Write(level, const_cast<char*>(module), const_cast<char*>(format.Text()), Printable(arguments)...);
}

/// Hands over one record of the library's own at the level that the name says.
/// @param format a literal
/// @param arguments what the format shows: texts, int, long
template <typename... Arguments>
void LogError(KFormatFor<Arguments...> format, const Arguments&... arguments) {
    LogRecord<Arguments...>(KLogLevelError, libraryModule, format, arguments...);
}

template <typename... Arguments>
void LogEvent(KFormatFor<Arguments...> format, const Arguments&... arguments) {
    LogRecord<Arguments...>(KLogLevelEvent, libraryModule, format, arguments...);
}

template <typename... Arguments>
void LogTrace(KFormatFor<Arguments...> format, const Arguments&... arguments) {
    LogRecord<Arguments...>(KLogLevelTrace, libraryModule, format, arguments...);
}

template <typename... Arguments>
void LogDetail(KFormatFor<Arguments...> format, const Arguments&... arguments) {
    LogRecord<Arguments...>(KLogLevelDetail, libraryModule, format, arguments...);
}

}  // namespace Korvel
