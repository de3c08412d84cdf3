#pragma once

#include <cstddef>

namespace Korvel {

/// One open key below HKEY_LOCAL_MACHINE, read only: the five registry operations that the library needs.
///
/// KRegistryKeyWindows.cpp calls the registry itself; KRegistryKeyStandIn.cpp reads the same hierarchy from a file in
/// the registry editor's export format. Both have the same limits: what does not fit is an error, never cut.
class KRegistryKey {
public:
    /// What a key is opened for; the values are the registry's access rights.
    enum class Access : unsigned long {
        QueryValue = 0x00001,
        Read = 0x20019,
    };

    KRegistryKey() = default;
    ~KRegistryKey() { Close(); }
    KRegistryKey(const KRegistryKey&) = delete;
    KRegistryKey& operator=(const KRegistryKey&) = delete;

    /// Opens a key.
    /// @param path the key's path below the hive, zero-terminated, with backslashes
    /// @return whether it could be opened; if not, this object stays as it was
    bool Open(const char* path, Access access);

    /// Counts the key's direct subkeys.
    bool CountSubkeys(unsigned long& count);

    /// Reads the name of one subkey.
    /// @param index 0 to the count less one, in the registry's own order
    /// @param capacity the size of `name` in characters, the terminating zero included
    /// @return false when there is no such subkey or its name does not fit
    bool ReadSubkeyName(unsigned long index, char* name, std::size_t capacity);

    /// Reads a value's bytes as they are stored, whatever the value's type.
    /// @param size in: the capacity of `buffer` in bytes; out: the number of bytes read
    /// @return false when there is no such value or it does not fit
    bool ReadValue(const char* valueName, unsigned char* buffer, std::size_t& size);

    /// Closes the key; does nothing when none is open.
    void Close() noexcept;

    /// Lets go of the open key without closing it.
    void LeaveOpen() noexcept;

private:
    void* handle = nullptr;  // an HKEY, or the stand-in's own open key
};

}  // namespace Korvel
