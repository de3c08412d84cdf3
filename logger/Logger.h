#pragma once

#if defined(_WIN32)
#if defined(KORVEL_BUILDING_LOGGER)
#define KORVEL_LOGGER_API __declspec(dllexport)
#else
#define KORVEL_LOGGER_API __declspec(dllimport)
#endif
#else
#define KORVEL_LOGGER_API __attribute__((visibility("default")))
#endif

/// The product's logging library, as every caller sees it. The library in this tree is a stand-in: any shared library
/// that is named `Logger` and exports this one function takes its place.
class KORVEL_LOGGER_API Logger {
public:
    /// Writes one log record. Safe to call from any thread; never throws.
    /// @param level 0 errors, 2 events, 3 entry and exit tracing, 4 request detail
    /// @param module the writer's name, zero-terminated; not changed
    /// @param format a printf format, zero-terminated; not changed
    static void Write(int level, char* module, char* format, ...);
};
