// The entry point of the Windows library.

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        // Nothing here is prepared or released per thread. The loader may decline, and the library works all the same.
        DisableThreadLibraryCalls(library);
    }
    return TRUE;
}
