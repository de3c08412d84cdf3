#include <KRegistryFile.h>
#include <KRegistryFileError.h>

#include "Configuration.h"

namespace Korvel::Ctl {
namespace {

constexpr const char* RootKey = "SOFTWARE\\Korvel\\HwProvider";

std::string Place(const std::string& path, const KRegistryNode& node) {
    return node.line == 0 ? path : path + ":" + std::to_string(node.line);
}

ConfiguredArray ReadArray(const std::string& path, const std::string& address, const KRegistryNode& node) {
    ConfiguredArray array;
    array.address = address;
    array.place = Place(path, node);
    const auto value = node.values.find("AccessKey");
    if (value != node.values.end()) {
        array.storedKey = std::string(value->second.begin(), value->second.end());
    }
    return array;
}

void ReadArrays(Configuration& configuration, const KRegistryFile& file) {
    const KRegistryNode* root = file.Find(RootKey);
    if (root == nullptr) {
        configuration.faults.push_back(configuration.source + ": the key HKEY_LOCAL_MACHINE\\" + RootKey +
                                       " is missing");
        return;
    }
    for (const std::string& address : root->SubkeyNames()) {
        if (const KRegistryNode* node = root->Find(address)) {
            configuration.arrays.push_back(ReadArray(configuration.source, address, *node));
        }
    }
}

}  // namespace

Configuration LoadConfiguration() {
    Configuration configuration;
    configuration.source = KRegistryFile::ConfiguredPath();
    try {
        ReadArrays(configuration, KRegistryFile(configuration.source));
    } catch (const KRegistryFileError& error) {
        configuration.faults.emplace_back(error.what());
    }
    return configuration;
}

}  // namespace Korvel::Ctl
