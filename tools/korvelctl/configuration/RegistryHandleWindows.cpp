#include "configuration/RegistryHandle.h"

#include <system_error>

namespace Korvel::Ctl {
namespace {

constexpr DWORD LongestKeyName = 256;      // the system's own limit of 255 characters, and the terminating zero
constexpr DWORD LongestValueName = 16384;  // likewise

}  // namespace

RegistryHandle::~RegistryHandle() {
    if (handle != nullptr) {
        RegCloseKey(handle);
    }
}

LSTATUS ReadSubkeyNames(const RegistryHandle& key, std::vector<std::string>& names) {
    for (DWORD index = 0;; ++index) {
        char name[LongestKeyName];
        DWORD length = LongestKeyName;
        const LSTATUS error = RegEnumKeyExA(key.Handle(), index, name, &length, nullptr, nullptr, nullptr, nullptr);
        if (error != ERROR_SUCCESS) {
            return error == ERROR_NO_MORE_ITEMS ? ERROR_SUCCESS : error;
        }
        names.emplace_back(name, length);
    }
}

std::vector<RegistryValue> ReadValues(const RegistryHandle& key) {
    std::vector<RegistryValue> values;
    std::vector<char> name(LongestValueName);
    for (DWORD index = 0;; ++index) {
        DWORD length = LongestValueName;
        DWORD type = 0;
        DWORD size = 0;
        if (RegEnumValueA(key.Handle(), index, name.data(), &length, nullptr, &type, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            return values;
        }
        const std::string text(name.data(), length);
        if (RegQueryValueExA(key.Handle(), text.c_str(), nullptr, nullptr, nullptr, &size) != ERROR_SUCCESS) {
            continue;
        }
        std::string bytes(size, '\0');
        if (RegQueryValueExA(key.Handle(), text.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(bytes.data()),
                             &size) == ERROR_SUCCESS) {
            bytes.resize(size);
            values.push_back({text, type, bytes});
        }
    }
}

std::string RegistryReason(LSTATUS error) {
    return std::system_category().message(static_cast<int>(error));
}

}  // namespace Korvel::Ctl
