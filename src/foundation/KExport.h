#pragma once

/// Marks what leaves the shared library. Building the library itself defines KORVEL_BUILDING_LIBRARY.
#if defined(_WIN32)
#if defined(KORVEL_BUILDING_LIBRARY)
#define KORVEL_API __declspec(dllexport)
#else
#define KORVEL_API __declspec(dllimport)
#endif
#else
#define KORVEL_API __attribute__((visibility("default")))
#endif
