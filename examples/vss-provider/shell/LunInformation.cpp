#include "shell/LunInformation.h"

#include <cstring>
#include <new>

namespace VssExample {

namespace {

template <typename Object>
Object* Allocated(std::size_t count) {
    auto* objects = static_cast<Object*>(CoTaskMemAlloc(count * sizeof(Object)));
    if (objects == nullptr) {
        throw std::bad_alloc();
    }
    return objects;
}

char* CopyOf(const char* text) {
    if (text == nullptr) {
        return nullptr;
    }
    const std::size_t size = std::strlen(text) + 1;
    return static_cast<char*>(std::memcpy(Allocated<char>(size), text, size));
}

}  // namespace

std::vector<StorageIdentifier> IdentifiersOf(const VDS_LUN_INFORMATION& lun) {
    std::vector<StorageIdentifier> identifiers;
    const auto& descriptor = lun.m_deviceIdDescriptor;
    for (ULONG at = 0; descriptor.m_rgIdentifiers != nullptr && at < descriptor.m_cIdentifiers; ++at) {
        const VDS_STORAGE_IDENTIFIER& identifier = descriptor.m_rgIdentifiers[at];
        identifiers.push_back({identifier.m_CodeSet, identifier.m_Type,
                               std::string(reinterpret_cast<const char*>(identifier.m_rgbIdentifier),
                                           identifier.m_rgbIdentifier == nullptr ? 0 : identifier.m_cbIdentifier)});
    }
    return identifiers;
}

void DescribeLun(VDS_LUN_INFORMATION& lun, const VDS_LUN_INFORMATION& like, const std::string& ieeeIdentifier) {
    const StorageIdentifier naa = NaaIdentifier(ieeeIdentifier);
    VDS_LUN_INFORMATION made = {};
    try {
        made.m_version = VER_VDS_LUN_INFORMATION;
        made.m_DeviceType = like.m_DeviceType;
        made.m_DeviceTypeModifier = like.m_DeviceTypeModifier;
        made.m_bCommandQueueing = like.m_bCommandQueueing;
        made.m_BusType = like.m_BusType;
        made.m_szVendorId = CopyOf(like.m_szVendorId);
        made.m_szProductId = CopyOf(like.m_szProductId);
        made.m_szProductRevision = CopyOf(like.m_szProductRevision);
        made.m_szSerialNumber = CopyOf(ieeeIdentifier.c_str());
        made.m_deviceIdDescriptor.m_version = like.m_deviceIdDescriptor.m_version;
        made.m_deviceIdDescriptor.m_rgIdentifiers = Allocated<VDS_STORAGE_IDENTIFIER>(1);
        auto& identifier = *made.m_deviceIdDescriptor.m_rgIdentifiers;
        identifier = {VDSStorageIdCodeSetBinary, VDSStorageIdTypeFCPHName, static_cast<ULONG>(naa.bytes.size()),
                      nullptr};
        made.m_deviceIdDescriptor.m_cIdentifiers = 1;
        identifier.m_rgbIdentifier = Allocated<BYTE>(naa.bytes.size());
        std::memcpy(identifier.m_rgbIdentifier, naa.bytes.data(), naa.bytes.size());
    } catch (const std::bad_alloc&) {
        FreeLun(made);
        throw;
    }
    lun = made;
}

void FreeLun(VDS_LUN_INFORMATION& lun) {
    auto& descriptor = lun.m_deviceIdDescriptor;
    for (ULONG at = 0; at < descriptor.m_cIdentifiers; ++at) {
        CoTaskMemFree(descriptor.m_rgIdentifiers[at].m_rgbIdentifier);
    }
    for (void* owned : {static_cast<void*>(descriptor.m_rgIdentifiers), static_cast<void*>(lun.m_szVendorId),
                        static_cast<void*>(lun.m_szProductId), static_cast<void*>(lun.m_szProductRevision),
                        static_cast<void*>(lun.m_szSerialNumber)}) {
        CoTaskMemFree(owned);
    }
    lun = {};
}

}  // namespace VssExample
