#include "host/ProviderClient.h"

#include <stdexcept>
#include <type_traits>

#include "core/LunIdentity.h"
#include "shell/LunInformation.h"
#include "shell/ProviderClass.h"

namespace VssExample {

namespace {

/// LUNs as the service describes them.
class Luns {
public:
    explicit Luns(const std::vector<std::string>& ids) : all(ids.size()) {
        VDS_LUN_INFORMATION like = {};
        like.m_BusType = VDSBusTypeiScsi;
        for (std::size_t at = 0; at < ids.size(); ++at) {
            DescribeLun(all[at], like, ids[at]);
        }
    }
    explicit Luns(std::size_t count) : all(count) {}
    ~Luns() {
        for (VDS_LUN_INFORMATION& lun : all) {
            FreeLun(lun);
        }
    }
    Luns(const Luns&) = delete;
    Luns& operator=(const Luns&) = delete;

    LONG Count() const { return static_cast<LONG>(all.size()); }
    VDS_LUN_INFORMATION* Data() { return all.data(); }
    std::vector<std::string> Ids() const {
        std::vector<std::string> ids;
        for (const VDS_LUN_INFORMATION& lun : all) {
            ids.push_back(IeeeIdentifierOf(IdentifiersOf(lun)));
        }
        return ids;
    }

private:
    std::vector<VDS_LUN_INFORMATION> all;
};

void RequireSuccess(HRESULT result, const std::string& what) {
    if (FAILED(result)) {
        throw std::runtime_error(what + " fails with " + std::to_string(static_cast<unsigned long>(result)));
    }
}

}  // namespace

void ProviderClient::Register(const std::string& path) {
    const std::unique_ptr<std::remove_pointer_t<HMODULE>, decltype(&FreeLibrary)> library(
        LoadLibraryExA(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH), FreeLibrary);
    if (!library) {
        throw std::runtime_error(path + " cannot be loaded: " + std::to_string(GetLastError()));
    }
    void* const address = reinterpret_cast<void*>(GetProcAddress(library.get(), "DllRegisterServer"));
    if (address == nullptr) {
        throw std::runtime_error(path + " has no DllRegisterServer");
    }
    RequireSuccess(reinterpret_cast<HRESULT(WINAPI*)()>(address)(), "DllRegisterServer");
}

template <typename Interface>
ProviderClient::Held<Interface> ProviderClient::Query() const {
    void* found = nullptr;
    RequireSuccess(provider->QueryInterface(__uuidof(Interface), &found), "QueryInterface");
    return Held<Interface>(static_cast<Interface*>(found));
}

ProviderClient::ProviderClient() {
    RequireSuccess(CoInitializeEx(nullptr, COINIT_MULTITHREADED), "CoInitializeEx");
    void* made = nullptr;
    RequireSuccess(
        CoCreateInstance(ProviderClass, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IVssHardwareSnapshotProvider), &made),
        "CoCreateInstance");
    provider.reset(static_cast<IVssHardwareSnapshotProvider*>(made));
    sets = Query<IVssProviderCreateSnapshotSet>();
    notifications = Query<IVssProviderNotifications>();
}

ProviderClient::~ProviderClient() {
    notifications.reset();
    sets.reset();
    provider.reset();
    CoUninitialize();
}

HRESULT ProviderClient::OnLoad() {
    return notifications->OnLoad(nullptr);
}

HRESULT ProviderClient::OnUnload(bool forced) {
    return notifications->OnUnload(forced ? TRUE : FALSE);
}

HRESULT ProviderClient::AreLunsSupported(const Ids& ids, bool& supported) {
    Luns luns(ids);
    std::vector<VSS_PWSZ> devices(ids.size());
    BOOL answer = FALSE;
    const HRESULT result = provider->AreLunsSupported(luns.Count(), 0, devices.data(), luns.Data(), &answer);
    supported = answer != FALSE;
    return result;
}

HRESULT ProviderClient::BeginPrepareSnapshot(const GUID& set, const GUID& snapshot, const Ids& ids) {
    Luns luns(ids);
    std::vector<VSS_PWSZ> devices(ids.size());
    return provider->BeginPrepareSnapshot(set, snapshot, 0, luns.Count(), devices.data(), luns.Data());
}

HRESULT ProviderClient::GetTargetLuns(const Ids& sources, Ids& targets) {
    Luns luns(sources);
    Luns made(sources.size());
    std::vector<VSS_PWSZ> devices(sources.size());
    const HRESULT result = provider->GetTargetLuns(luns.Count(), devices.data(), luns.Data(), made.Data());
    if (result == S_OK) {
        targets = made.Ids();
    }
    return result;
}

HRESULT ProviderClient::LocateLuns(const Ids& targets) {
    Luns luns(targets);
    return provider->LocateLuns(luns.Count(), luns.Data());
}

HRESULT ProviderClient::OnLunEmpty(const std::string& target) {
    Luns luns(Ids{target});
    return provider->OnLunEmpty(nullptr, luns.Data());
}

}  // namespace VssExample
