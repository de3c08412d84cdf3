#pragma once

#include <cstdint>

#ifdef _WIN32
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#else
#include <fcntl.h>
#endif

namespace Korvel::Testing {

/// @param most how many there can be; they are counted one by one, since Wine does not tell their number
/// @return how many descriptors, or on Windows handles, the process has
inline unsigned long OpenDescriptors(std::uintptr_t most = 256) {
    unsigned long open = 0;
    for (std::uintptr_t number = 0; number < most; ++number) {
#ifdef _WIN32
        DWORD flags = 0;
        open += GetHandleInformation(reinterpret_cast<HANDLE>((number + 1) * 4), &flags) != 0 ? 1 : 0;
#else
        open += fcntl(static_cast<int>(number), F_GETFD) != -1 ? 1 : 0;
#endif
    }
    return open;
}

}  // namespace Korvel::Testing
