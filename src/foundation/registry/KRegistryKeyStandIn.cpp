#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/KKeptLeak.h"
#include "foundation/registry/KRegistryKey.h"
#include "foundation/registry/regfile/KRegDocument.h"
#include "foundation/registry/regfile/KRegError.h"
#include "foundation/registry/regfile/KRegNode.h"

namespace Korvel {

namespace {

/// What the caller may ask an open key for, so that the file can be forgotten: a key is left open now and then.
struct KOpenKey {
    std::vector<std::string> subkeyNames;
    KRegNode::Values values;
};

const KOpenKey* Opened(void* handle) {
    return static_cast<const KOpenKey*>(handle);
}

std::unique_ptr<KOpenKey> OpenFromFile(const char* path) {
    const KRegDocument file(KRegDocument::ConfiguredPath());
    const KRegNode* node = file.Find(path);
    return node == nullptr ? nullptr : std::make_unique<KOpenKey>(KOpenKey{node->SubkeyNames(), node->values});
}

}  // namespace

bool KRegistryKey::Open(const char* path, [[maybe_unused]] Access access) {
    std::unique_ptr<KOpenKey> opened;
    try {
        opened = OpenFromFile(path);
    } catch (const KRegError&) {
        return false;  // the caller knows one failure only; the configuration check names file, line and fault
    }
    if (opened == nullptr) {
        return false;
    }
    Close();
    handle = opened.release();
    return true;
}

bool KRegistryKey::CountSubkeys(unsigned long& count) {
    if (handle == nullptr) {
        return false;
    }
    count = static_cast<unsigned long>(Opened(handle)->subkeyNames.size());
    return true;
}

bool KRegistryKey::ReadSubkeyName(unsigned long index, char* name, std::size_t capacity) {
    if (handle == nullptr || index >= Opened(handle)->subkeyNames.size()) {
        return false;
    }
    const std::string& found = Opened(handle)->subkeyNames[index];
    if (found.size() >= capacity) {
        return false;
    }
    std::copy_n(found.c_str(), found.size() + 1, name);
    return true;
}

bool KRegistryKey::ReadValue(const char* valueName, unsigned char* buffer, std::size_t& size) {
    if (handle == nullptr) {
        return false;
    }
    const KRegNode::Values& values = Opened(handle)->values;
    const auto found = values.find(valueName);
    if (found == values.end() || found->second.size() > size) {
        return false;
    }
    std::copy(found->second.begin(), found->second.end(), buffer);
    size = found->second.size();
    return true;
}

void KRegistryKey::LeaveOpen() noexcept {
    KeepLeaked(std::exchange(handle, nullptr));
}

void KRegistryKey::Close() noexcept {
    delete static_cast<KOpenKey*>(std::exchange(handle, nullptr));
}

}  // namespace Korvel
