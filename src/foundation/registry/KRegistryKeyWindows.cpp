#include <windows.h>

#include <utility>

#include "foundation/registry/KRegistryKey.h"

namespace Korvel {

namespace {

static_assert(static_cast<REGSAM>(KRegistryKey::Access::QueryValue) == KEY_QUERY_VALUE);
static_assert(static_cast<REGSAM>(KRegistryKey::Access::Read) == KEY_READ);

HKEY Opened(void* handle) {
    return static_cast<HKEY>(handle);
}

DWORD Size(std::size_t size) {
    return size < MAXDWORD ? static_cast<DWORD>(size) : MAXDWORD;
}

}  // namespace

bool KRegistryKey::Open(const char* path, Access access) {
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, static_cast<REGSAM>(access), &opened) != ERROR_SUCCESS) {
        return false;
    }
    Close();
    handle = opened;
    return true;
}

bool KRegistryKey::CountSubkeys(unsigned long& count) {
    return RegQueryInfoKeyA(Opened(handle), nullptr, nullptr, nullptr, &count, nullptr, nullptr, nullptr, nullptr,
                            nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

bool KRegistryKey::ReadSubkeyName(unsigned long index, char* name, std::size_t capacity) {
    DWORD size = Size(capacity);
    return RegEnumKeyExA(Opened(handle), index, name, &size, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

bool KRegistryKey::ReadValue(const char* valueName, unsigned char* buffer, std::size_t& size) {
    DWORD read = Size(size);
    if (RegQueryValueExA(Opened(handle), valueName, nullptr, nullptr, buffer, &read) != ERROR_SUCCESS) {
        return false;
    }
    size = read;
    return true;
}

void KRegistryKey::LeaveOpen() noexcept {
    handle = nullptr;
}

void KRegistryKey::Close() noexcept {
    if (handle != nullptr) {
        RegCloseKey(Opened(std::exchange(handle, nullptr)));
    }
}

}  // namespace Korvel
