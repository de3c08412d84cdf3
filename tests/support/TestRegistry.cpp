#include "support/TestRegistry.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#if defined(_WIN32)
#include <windows.h>
#else
#include <filesystem>
#include <fstream>
#endif

namespace Korvel {

#if defined(_WIN32)

namespace {

void Require(LSTATUS status) {
    if (status != ERROR_SUCCESS) {
        throw std::runtime_error("the registry refuses: error " + std::to_string(status));
    }
}

}  // namespace

class TestRegistry::Store {
public:
    static void Clear() {
        const LSTATUS status = RegDeleteTreeA(HKEY_LOCAL_MACHINE, root);
        Require(status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status);
    }

    static void Add(const std::string& address) { RegCloseKey(Opened(address)); }

    static void Remove(const std::string& address) {
        const HKEY key = Opened("");
        const LSTATUS status = RegDeleteTreeA(key, address.c_str());
        RegCloseKey(key);
        Require(status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status);
    }

    static void Set(const std::string& address, const std::string& valueName, unsigned long type,
                    std::vector<unsigned char> bytes) {
        const auto size = static_cast<DWORD>(bytes.size());
        bytes.push_back(0xff);  // A zero here would be taken for a text's own and stored with it.
        const HKEY key = Opened(address);
        const LSTATUS status = RegSetValueExA(key, valueName.c_str(), 0, type, bytes.data(), size);
        RegCloseKey(key);
        Require(status);
    }

private:
    static constexpr const char* root = "SOFTWARE\\Korvel\\HwProvider";

    static HKEY Opened(const std::string& address) {
        HKEY rootKey = nullptr;
        HKEY key = nullptr;
        Require(RegCreateKeyExA(HKEY_LOCAL_MACHINE, root, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &rootKey, nullptr));
        if (address.empty()) {
            return rootKey;
        }
        // In two steps: a path may have 259 characters only.
        const LSTATUS status =
            RegCreateKeyExA(rootKey, address.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
        RegCloseKey(rootKey);
        Require(status);
        return key;
    }
};

#else

class TestRegistry::Store {
public:
    Store() {
        std::string pattern = (std::filesystem::temp_directory_path() / "korvel-registry-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no folder for the registry file");
        }
        folder = pattern;
        setenv("KORVEL_REGISTRY", (folder / "registry.reg").c_str(), 1);
    }

    ~Store() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
        unsetenv("KORVEL_REGISTRY");
    }

    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    void Clear() { Append("[-" + Key("") + "]\n"); }

    void Add(const std::string& address) { Append("[" + Key(address) + "]\n"); }

    void Remove(const std::string& address) { Append("[-" + Key(address) + "]\n"); }

    void Set(const std::string& address, const std::string& valueName, unsigned long type,
             const std::vector<unsigned char>& bytes) {
        char number[16];
        (void)std::snprintf(number, sizeof number, "%lx", type);
        std::string data = std::string("hex(") + number + "):";
        for (std::size_t index = 0; index < bytes.size(); ++index) {
            (void)std::snprintf(number, sizeof number, "%s%02x", index == 0 ? "" : ",", bytes[index]);
            data += number;
        }
        Append("[" + Key(address) + "]\n\"" + valueName + "\"=" + data + "\n");
    }

private:
    static std::string Key(const std::string& address) {
        return R"(HKEY_LOCAL_MACHINE\SOFTWARE\Korvel\HwProvider)" + (address.empty() ? "" : "\\" + address);
    }

    // A change is a line more: the format removes and replaces, too.
    void Append(const std::string& lines) {
        content += lines;
        std::ofstream file(folder / "registry.reg", std::ios::binary);
        if (!(file << content << std::flush)) {
            throw std::runtime_error("the registry file can't be written");
        }
        using std::filesystem::perms;
        std::filesystem::permissions(folder / "registry.reg", perms::owner_read | perms::owner_write);
    }

    std::filesystem::path folder;
    std::string content = "Windows Registry Editor Version 5.00\n\n";
};

#endif

TestRegistry::TestRegistry() : store(std::make_unique<Store>()) {
    Clear();
}

TestRegistry::~TestRegistry() {
    try {
        Clear();
    } catch (const std::runtime_error&) {  // The next test clears it again, and says so if it can't.
    }
}

void TestRegistry::Clear() {
    store->Clear();
}

void TestRegistry::AddRoot() {
    store->Add("");
}

void TestRegistry::AddArray(const std::string& address) {
    store->Add(address);
}

void TestRegistry::Remove(const std::string& address) {
    store->Remove(address);
}

void TestRegistry::SetText(const std::string& address, const std::string& valueName, const std::string& text) {
    const char* bytes = text.c_str();
    store->Set(address, valueName, 1, std::vector<unsigned char>(bytes, bytes + text.size() + 1));
}

void TestRegistry::SetBytes(const std::string& address, const std::string& valueName, unsigned long type,
                            const std::vector<unsigned char>& bytes) {
    store->Set(address, valueName, type, bytes);
}

}  // namespace Korvel
