#pragma once

#include <windows.h>

#include <vss.h>

#include <vsprov.h>

#include <atomic>
#include <string>
#include <vector>

#include "core/ProviderCore.h"

namespace VssExample {

/// The provider as a COM object: turns the service's calls into the core's terms and its errors into HRESULTs, and
/// decides nothing. No exception leaves it.
class Provider final : public IVssHardwareSnapshotProvider,
                       public IVssProviderCreateSnapshotSet,
                       public IVssProviderNotifications {
public:
    Provider();
    Provider(const Provider&) = delete;
    Provider& operator=(const Provider&) = delete;

    /// @return whether code of this library is in use, by an object or by a thread that waits for an array
    static bool AnyInUse();

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE OnLoad(IUnknown* callback) override;
    HRESULT STDMETHODCALLTYPE OnUnload(BOOL forced) override;

    HRESULT STDMETHODCALLTYPE AreLunsSupported(LONG count, LONG context, VSS_PWSZ* devices, VDS_LUN_INFORMATION* luns,
                                               BOOL* supported) override;
    HRESULT STDMETHODCALLTYPE FillInLunInfo(VSS_PWSZ device, VDS_LUN_INFORMATION* lun, BOOL* supported) override;
    HRESULT STDMETHODCALLTYPE BeginPrepareSnapshot(VSS_ID set, VSS_ID snapshot, LONG context, LONG count,
                                                   VSS_PWSZ* devices, VDS_LUN_INFORMATION* luns) override;
    HRESULT STDMETHODCALLTYPE GetTargetLuns(LONG count, VSS_PWSZ* devices, VDS_LUN_INFORMATION* sources,
                                            VDS_LUN_INFORMATION* destinations) override;
    HRESULT STDMETHODCALLTYPE LocateLuns(LONG count, VDS_LUN_INFORMATION* luns) override;
    HRESULT STDMETHODCALLTYPE OnLunEmpty(VSS_PWSZ device, VDS_LUN_INFORMATION* lun) override;

    HRESULT STDMETHODCALLTYPE EndPrepareSnapshots(VSS_ID set) override;
    HRESULT STDMETHODCALLTYPE PreCommitSnapshots(VSS_ID set) override;
    HRESULT STDMETHODCALLTYPE CommitSnapshots(VSS_ID set) override;
    HRESULT STDMETHODCALLTYPE PostCommitSnapshots(VSS_ID set, LONG count) override;
    HRESULT STDMETHODCALLTYPE PreFinalCommitSnapshots(VSS_ID set) override;
    HRESULT STDMETHODCALLTYPE PostFinalCommitSnapshots(VSS_ID set) override;
    HRESULT STDMETHODCALLTYPE AbortSnapshots(VSS_ID set) override;

private:
    ~Provider();

    std::atomic<ULONG> references{1};
    ProviderCore core;
};

}  // namespace VssExample
