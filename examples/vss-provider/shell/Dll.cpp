// The four functions by which COM and an installer know the library.

#include <windows.h>

#include <olectl.h>

#include <string>

#include "shell/ClassFactory.h"
#include "shell/Provider.h"
#include "shell/ProviderClass.h"

namespace {

std::string ClassKey() {
    wchar_t wide[40] = {};
    StringFromGUID2(VssExample::ProviderClass, wide, 40);
    std::string text = R"(SOFTWARE\Classes\CLSID\)";
    for (const wchar_t* at = wide; *at != 0; ++at) {
        text += static_cast<char>(*at);
    }
    return text;
}

bool SetText(const std::string& key, const char* name, const std::string& text) {
    return RegSetKeyValueA(HKEY_LOCAL_MACHINE, key.c_str(), name, REG_SZ, text.c_str(),
                           static_cast<DWORD>(text.size() + 1)) == ERROR_SUCCESS;
}

/// @return the path of this library's own file; empty when it is too long
std::string OwnPath() {
    HMODULE self = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const char*>(&OwnPath), &self);
    char path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameA(self, path, sizeof path);
    return length < sizeof path ? std::string(path, length) : "";
}

}  // namespace

STDAPI DllGetClassObject(REFCLSID classId, REFIID interfaceId, void** object) {
    static VssExample::ClassFactory factory;
    return classId == VssExample::ProviderClass ? factory.QueryInterface(interfaceId, object)
                                                : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
    return VssExample::Provider::AnyInUse() || VssExample::ClassFactory::IsLocked() ? S_FALSE : S_OK;
}

STDAPI DllRegisterServer() {
    const std::string path = OwnPath();
    const std::string server = ClassKey() + R"(\InprocServer32)";
    const bool done = !path.empty() && SetText(ClassKey(), nullptr, "Korvel example hardware provider") &&
                      SetText(server, nullptr, path) && SetText(server, "ThreadingModel", "Both");
    return done ? S_OK : SELFREG_E_CLASS;
}

STDAPI DllUnregisterServer() {
    const LSTATUS status = RegDeleteTreeA(HKEY_LOCAL_MACHINE, ClassKey().c_str());
    return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND ? S_OK : SELFREG_E_CLASS;
}
