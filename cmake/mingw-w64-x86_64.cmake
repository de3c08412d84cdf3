# Cross-builds for Windows x64 with Debian's MinGW-w64.
#
# KORVEL_WINDOWS_PREFIX is where the Windows builds of the libraries are; scripts/windows-dependencies makes them and
# points build/windows-dependencies there.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The variant with POSIX threads: the other one of this compiler release has no std::thread and no std::mutex.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

get_filename_component(korvelRoot "${CMAKE_CURRENT_LIST_DIR}/.." ABSOLUTE)
set(KORVEL_WINDOWS_PREFIX "${korvelRoot}/build/windows-dependencies" CACHE PATH "Windows builds of the libraries")
if(NOT IS_DIRECTORY "${KORVEL_WINDOWS_PREFIX}")
    message(FATAL_ERROR "${KORVEL_WINDOWS_PREFIX} is missing: run scripts/windows-dependencies first")
endif()

# Libraries and headers come from the prefix alone: the machine's own would bring its C library's headers with them.
set(CMAKE_FIND_ROOT_PATH "${KORVEL_WINDOWS_PREFIX}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The libraries' own packages say what a static library asks of its users; CMake's find modules do not.
set(CMAKE_FIND_PACKAGE_PREFER_CONFIG ON)

# No Windows host has the compiler's runtime DLLs.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
set(CMAKE_MODULE_LINKER_FLAGS_INIT -static)

set(CMAKE_CROSSCOMPILING_EMULATOR "${korvelRoot}/scripts/lib/wine-run")
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KORVEL_WINDOWS_PREFIX)
