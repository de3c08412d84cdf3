#pragma once

#include <windows.h>

#include <unknwn.h>

namespace VssExample {

/// Makes providers. There is one factory, as long as the library is loaded; references to it are not counted.
class ClassFactory final : public IClassFactory {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID interfaceId, void** object) override;
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;

    /// @return whether a client wants the library to stay
    static bool IsLocked();
};

}  // namespace VssExample
