#include "shell/Provider.h"

#include <vsserror.h>

#include <algorithm>
#include <new>
#include <stdexcept>

#include "core/LunIdentity.h"
#include "core/ProviderError.h"
#include "shell/EventLog.h"
#include "shell/InitiatorName.h"
#include "shell/LunInformation.h"

namespace VssExample {

namespace {

std::atomic<long> objects{0};
std::atomic<bool> threadsLeft{false};  // for good: the code of a thread stays that may still end

HRESULT ResultOf(const ProviderError& error) {
    switch (error.kind) {
        case ProviderError::Kind::BadState:
            return VSS_E_BAD_STATE;
        case ProviderError::Kind::NotFound:
            return VSS_E_OBJECT_NOT_FOUND;
        default:
            return VSS_E_PROVIDER_VETO;
    }
}

/// Runs one call of the service.
/// @param valid whether its arguments are there
template <typename Call>
HRESULT Guarded(bool valid, Call call) noexcept {
    if (!valid) {
        return E_INVALIDARG;
    }
    try {
        call();
        return S_OK;
    } catch (const ProviderError& error) {
        WriteEvent(error.what());
        return ResultOf(error);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (const std::invalid_argument&) {
        return E_INVALIDARG;
    } catch (const std::exception& error) {
        WriteEvent(error.what());
        return VSS_E_PROVIDER_VETO;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

std::string TextOf(const VSS_ID& id) {
    wchar_t wide[40] = {};
    const int length = StringFromGUID2(id, wide, 40);
    std::string text;
    for (int at = 0; at + 1 < length; ++at) {
        text += static_cast<char>(wide[at]);  // digits, dashes and braces
    }
    return text;
}

std::vector<std::string> IdsOf(LONG count, const VDS_LUN_INFORMATION* luns) {
    std::vector<std::string> ids;
    for (LONG at = 0; at < count; ++at) {
        ids.push_back(IeeeIdentifierOf(IdentifiersOf(luns[at])));
    }
    return ids;
}

}  // namespace

Provider::Provider() : core(WriteEvent, InitiatorName, ProviderCore::Patience{}) {
    ++objects;
}

Provider::~Provider() {
    threadsLeft = !core.OnUnload(true) || threadsLeft;
    --objects;
}

bool Provider::AnyInUse() {
    return objects > 0 || threadsLeft;
}

HRESULT Provider::QueryInterface(REFIID interfaceId, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    if (interfaceId == __uuidof(IUnknown) || interfaceId == __uuidof(IVssHardwareSnapshotProvider)) {
        *object = static_cast<IVssHardwareSnapshotProvider*>(this);
    } else if (interfaceId == __uuidof(IVssProviderCreateSnapshotSet)) {
        *object = static_cast<IVssProviderCreateSnapshotSet*>(this);
    } else if (interfaceId == __uuidof(IVssProviderNotifications)) {
        *object = static_cast<IVssProviderNotifications*>(this);
    } else {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG Provider::AddRef() {
    return ++references;
}

ULONG Provider::Release() {
    const ULONG left = --references;
    if (left == 0) {
        delete this;
    }
    return left;
}

HRESULT Provider::OnLoad(IUnknown* /*callback*/) {
    return Guarded(true, [&] { core.OnLoad(); });
}

HRESULT Provider::OnUnload(BOOL forced) {
    return Guarded(true, [&] { threadsLeft = !core.OnUnload(forced != FALSE) || threadsLeft; });
}

HRESULT Provider::AreLunsSupported(LONG count, LONG /*context*/, VSS_PWSZ* /*devices*/, VDS_LUN_INFORMATION* luns,
                                   BOOL* supported) {
    return Guarded(count > 0 && luns != nullptr && supported != nullptr,
                   [&] { *supported = core.AreLunsSupported(IdsOf(count, luns)) ? TRUE : FALSE; });
}

HRESULT Provider::FillInLunInfo(VSS_PWSZ /*device*/, VDS_LUN_INFORMATION* lun, BOOL* supported) {
    return Guarded(lun != nullptr && supported != nullptr,
                   [&] { *supported = core.AreLunsSupported(IdsOf(1, lun)) ? TRUE : FALSE; });
}

HRESULT Provider::BeginPrepareSnapshot(VSS_ID set, VSS_ID snapshot, LONG /*context*/, LONG count, VSS_PWSZ* /*devices*/,
                                       VDS_LUN_INFORMATION* luns) {
    return Guarded(count > 0 && luns != nullptr,
                   [&] { core.BeginPrepareSnapshot(TextOf(set), TextOf(snapshot), IdsOf(count, luns)); });
}

HRESULT Provider::GetTargetLuns(LONG count, VSS_PWSZ* /*devices*/, VDS_LUN_INFORMATION* sources,
                                VDS_LUN_INFORMATION* destinations) {
    return Guarded(count > 0 && sources != nullptr && destinations != nullptr, [&] {
        const std::vector<std::string> ids = core.GetTargetLuns(IdsOf(count, sources));
        std::vector<VDS_LUN_INFORMATION> made(ids.size());
        try {
            for (std::size_t at = 0; at < ids.size(); ++at) {
                DescribeLun(made[at], sources[at], ids[at]);
            }
        } catch (const std::exception&) {
            for (VDS_LUN_INFORMATION& lun : made) {
                FreeLun(lun);
            }
            throw;
        }
        std::copy(made.begin(), made.end(), destinations);
    });
}

HRESULT Provider::LocateLuns(LONG count, VDS_LUN_INFORMATION* luns) {
    return Guarded(count > 0 && luns != nullptr, [&] { core.LocateLuns(IdsOf(count, luns)); });
}

HRESULT Provider::OnLunEmpty(VSS_PWSZ /*device*/, VDS_LUN_INFORMATION* lun) {
    return Guarded(lun != nullptr, [&] { core.OnLunEmpty(IdsOf(1, lun).front()); });
}

HRESULT Provider::EndPrepareSnapshots(VSS_ID set) {
    return Guarded(true, [&] { core.EndPrepareSnapshots(TextOf(set)); });
}

HRESULT Provider::PreCommitSnapshots(VSS_ID set) {
    return Guarded(true, [&] { core.PreCommitSnapshots(TextOf(set)); });
}

HRESULT Provider::CommitSnapshots(VSS_ID set) {
    return Guarded(true, [&] { core.CommitSnapshots(TextOf(set)); });
}

HRESULT Provider::PostCommitSnapshots(VSS_ID set, LONG /*count*/) {
    return Guarded(true, [&] { core.PostCommitSnapshots(TextOf(set)); });
}

// Nothing is changed in a snapshot after it was taken, so there is nothing to do around the final commit.
HRESULT Provider::PreFinalCommitSnapshots(VSS_ID /*set*/) {
    return S_OK;
}

HRESULT Provider::PostFinalCommitSnapshots(VSS_ID /*set*/) {
    return S_OK;
}

HRESULT Provider::AbortSnapshots(VSS_ID set) {
    return Guarded(true, [&] { core.AbortSnapshots(TextOf(set)); });
}

}  // namespace VssExample
