#include <KorvelAccessLibrary.h>

#include "configuration/Configuration.h"
#include "foundation/registry/regfile/KRegDocument.h"
#include "foundation/registry/regfile/KRegError.h"
#include "foundation/registry/regfile/KRegNode.h"

namespace Korvel::Ctl {
namespace {

std::string Place(const std::string& path, const KRegNode& node) {
    return node.line == 0 ? path : path + ":" + std::to_string(node.line);
}

ConfiguredArray ReadArray(const std::string& path, const std::string& address, const KRegNode& node) {
    ConfiguredArray array;
    array.address = address;
    array.place = Place(path, node);
    const auto value = node.values.find("AccessKey");
    if (value != node.values.end()) {
        array.storedKey = std::string(value->second.begin(), value->second.end());
    }
    return array;
}

void ReadArrays(Configuration& configuration, const KRegDocument& file) {
    const KRegNode* root = file.Find(KRegistryRootKey);
    if (root == nullptr) {
        configuration.faults.push_back(configuration.source + ": the key HKEY_LOCAL_MACHINE\\" +
                                       std::string(KRegistryRootKey) + " is missing");
        return;
    }
    for (const std::string& address : root->SubkeyNames()) {
        if (const KRegNode* node = root->Find(address)) {
            configuration.arrays.push_back(ReadArray(configuration.source, address, *node));
        }
    }
}

}  // namespace

Configuration LoadConfiguration() {
    Configuration configuration;
    configuration.source = KRegDocument::ConfiguredPath();
    try {
        ReadArrays(configuration, KRegDocument(configuration.source));
    } catch (const KRegError& error) {
        configuration.faults.emplace_back(error.what());
    }
    return configuration;
}

}  // namespace Korvel::Ctl
