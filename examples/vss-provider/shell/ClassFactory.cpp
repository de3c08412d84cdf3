#include "shell/ClassFactory.h"

#include <atomic>
#include <new>

#include "shell/Provider.h"

namespace VssExample {

namespace {

std::atomic<long> locks{0};

}  // namespace

HRESULT ClassFactory::QueryInterface(REFIID interfaceId, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    const bool known = interfaceId == __uuidof(IUnknown) || interfaceId == __uuidof(IClassFactory);
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
}

ULONG ClassFactory::AddRef() {
    return 2;
}

ULONG ClassFactory::Release() {
    return 1;
}

HRESULT ClassFactory::CreateInstance(IUnknown* outer, REFIID interfaceId, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    if (outer != nullptr) {
        return CLASS_E_NOAGGREGATION;
    }
    try {
        auto* provider = new Provider;
        const HRESULT result = provider->QueryInterface(interfaceId, object);
        provider->Release();
        return result;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

HRESULT ClassFactory::LockServer(BOOL lock) {
    locks += lock ? 1 : -1;
    return S_OK;
}

bool ClassFactory::IsLocked() {
    return locks > 0;
}

}  // namespace VssExample
