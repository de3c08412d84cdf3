#pragma once

#include <memory>
#include <string>
#include <vector>

namespace Korvel {

/// The arrays' configuration for a test: real keys on Windows, elsewhere a registry file of its own that this process
/// and its children read. Everything is gone when it goes, as it is at the start: no root key at all. On Windows the
/// machine's own configuration is lost with it, so run the tests where there is none.
///
/// An address is the name of an array's subkey; names are narrow characters. Whatever fails throws
/// std::runtime_error.
class TestRegistry {
public:
    TestRegistry();
    ~TestRegistry();
    TestRegistry(const TestRegistry&) = delete;
    TestRegistry& operator=(const TestRegistry&) = delete;

    /// Removes the root key with all below it.
    void Clear();

    /// Adds the root key, without arrays.
    void AddRoot();

    /// Adds an array's subkey, and the root key if it is missing.
    void AddArray(const std::string& address);

    /// Removes an array's subkey.
    void Remove(const std::string& address);

    /// Sets a text value (the terminating zero is stored, too) and adds the array if it is missing.
    void SetText(const std::string& address, const std::string& valueName, const std::string& text);

    /// Sets a value's bytes as they stand and adds the array if it is missing.
    /// @param type the registry's number for the type: 1 a text, 3 binary
    void SetBytes(const std::string& address, const std::string& valueName, unsigned long type,
                  const std::vector<unsigned char>& bytes);

private:
    class Store;
    std::unique_ptr<Store> store;
};

}  // namespace Korvel
