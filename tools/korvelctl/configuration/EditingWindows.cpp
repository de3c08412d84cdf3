#include <KorvelAccessLibrary.h>

#include <windows.h>

#include <string>

#include "configuration/Editing.h"
#include "configuration/RegistryHandle.h"
#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"

namespace Korvel::Ctl {
namespace {

const std::string RootKey(KRegistryRootKey);

void Require(LSTATUS error, const std::string& address, const std::string& what) {
    if (error == ERROR_FILE_NOT_FOUND) {
        RefuseUnconfigured(address);
    }
    if (error != ERROR_SUCCESS) {
        throw Failure(ExitFailed,
                      "HKEY_LOCAL_MACHINE\\" + RootKey + "\\" + address + ": " + what + ": " + RegistryReason(error),
                      address);
    }
}

LSTATUS StoreKey(HKEY array, const std::string& accessKey) {
    return RegSetValueExA(array, KAccessKeyValue, 0, REG_SZ, reinterpret_cast<const BYTE*>(accessKey.c_str()),
                          static_cast<DWORD>(accessKey.size() + 1));
}

/// Opens a key and makes it if it is missing.
LSTATUS Create(HKEY parent, const std::string& name, HKEY& key, DWORD& disposition) {
    return RegCreateKeyExA(parent, name.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, &disposition);
}

}  // namespace

/// In two steps: a path may have 259 characters only.
void AddConfiguredArray(const std::string& address, const std::string& accessKey) {
    HKEY root = nullptr;
    HKEY array = nullptr;
    DWORD disposition = 0;
    Require(Create(HKEY_LOCAL_MACHINE, RootKey, root, disposition), address, "the key cannot be made");
    LSTATUS error = Create(root, address, array, disposition);
    const bool isNew = error == ERROR_SUCCESS && disposition == REG_CREATED_NEW_KEY;
    if (isNew) {
        error = StoreKey(array, accessKey);
    }
    if (array != nullptr) {
        RegCloseKey(array);
    }
    if (isNew && error != ERROR_SUCCESS) {
        RegDeleteKeyA(root, address.c_str());
    }
    RegCloseKey(root);
    Require(error, address, "the key cannot be made");
    if (!isNew) {
        RefuseConfigured(address);
    }
}

void RemoveConfiguredArray(const std::string& address) {
    const RegistryHandle root(HKEY_LOCAL_MACHINE, RootKey, KEY_ALL_ACCESS);
    Require(root.Error(), address, "the key cannot be opened");
    Require(RegDeleteTreeA(root.Handle(), address.c_str()), address, "the key cannot be removed");
}

void SetConfiguredKey(const std::string& address, const std::string& accessKey) {
    const RegistryHandle root(HKEY_LOCAL_MACHINE, RootKey, KEY_READ);
    Require(root.Error(), address, "the key cannot be opened");
    const RegistryHandle array(root.Handle(), address, KEY_SET_VALUE);
    Require(array.Error(), address, "the key cannot be opened");
    Require(StoreKey(array.Handle(), accessKey), address, "the access key cannot be stored");
}

}  // namespace Korvel::Ctl
