#include "shell/InitiatorName.h"

#include <windows.h>

#include <memory>
#include <stdexcept>

namespace VssExample {

namespace {

constexpr std::size_t longestName = 223;  // of an iSCSI name

std::string ConfiguredName() {
    char name[longestName + 1] = {};
    DWORD size = sizeof name;
    const LSTATUS status = RegGetValueA(HKEY_LOCAL_MACHINE, R"(SOFTWARE\KorvelVssExample)", "InitiatorName",
                                        RRF_RT_REG_SZ, nullptr, name, &size);
    return status == ERROR_SUCCESS ? name : "";
}

/// Loaded only now: hosts without iSCSI do without the library.
std::string SystemName() {
    using GetNodeName = HRESULT(WINAPI*)(char*);
    const std::unique_ptr<std::remove_pointer_t<HMODULE>, decltype(&FreeLibrary)> library(
        LoadLibraryExA("iscsidsc.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32), FreeLibrary);
    if (!library) {
        return "";
    }
    void* const address = reinterpret_cast<void*>(GetProcAddress(library.get(), "GetIScsiInitiatorNodeNameA"));
    char name[longestName + 1] = {};
    return address != nullptr && reinterpret_cast<GetNodeName>(address)(name) == ERROR_SUCCESS ? name : "";
}

}  // namespace

std::string InitiatorName() {
    std::string name = ConfiguredName();
    if (name.empty()) {
        name = SystemName();
    }
    if (name.empty()) {
        throw std::runtime_error("this host has no iSCSI initiator name");
    }
    return name;
}

}  // namespace VssExample
