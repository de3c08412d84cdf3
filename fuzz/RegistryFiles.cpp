// The file that stands in for the registry, read by the library, checked and changed by korvelctl: an input of even
// length loses the array, one of odd length gets it a new key.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Require.h"
#include "TextFile.h"
#include "configuration/Configuration.h"
#include "configuration/Inspection.h"
#include "configuration/RegistryText.h"
#include "foundation/registry/regfile/KRegDocument.h"
#include "foundation/registry/regfile/KRegEncoding.h"
#include "foundation/registry/regfile/KRegError.h"
#include "foundation/registry/regfile/KRegNode.h"

namespace Korvel::Fuzz {
namespace {

constexpr const char* root = "SOFTWARE\\Korvel\\HwProvider";
const std::string address = "192.0.2.1";

/// @return an array's access key as the library reads it, "?" when there is none
std::string KeyOf(const KRegDocument& document, const std::string& array) {
    const KRegNode* node = document.Find(std::string(root) + '\\' + array);
    const auto value = node == nullptr ? KRegNode::Values::const_iterator() : node->values.find("AccessKey");
    return node == nullptr || value == node->values.end() ? "?"
                                                          : std::string(value->second.begin(), value->second.end());
}

/// Everything about the other arrays.
std::string OthersIn(const KRegDocument& document) {
    std::string all;
    if (const KRegNode* arrays = document.Find(root); arrays != nullptr) {
        for (const std::string& name : arrays->SubkeyNames()) {
            all += name == address ? "" : name + '=' + KeyOf(document, name) + '\n';
        }
    }
    return all;
}

void Change(const TextFile& file, const std::string& text, bool remove) {
    const std::string others = OthersIn(KRegDocument(file.Path()));
    Ctl::RegistryText changed(file.Path(), text, address);
    if (remove) {
        changed.RemoveArray();
    } else {
        changed.SetKey("a \"key\" with \\");
    }
    file.Write(changed.Text());
    const KRegDocument after(file.Path());
    Require(OthersIn(after) == others, "other arrays stay as they are");
    Require(KeyOf(after, address) == (remove ? std::string("?") : std::string("a \"key\" with \\") + '\0'),
            "the array's key is the new one, or gone");
    Require(Ctl::RegistryText(file.Path(), changed.Text(), address).HasArray() != remove,
            "the array is there, or gone");
}

/// What `config check` says of a file that the library reads, or does not.
void Check(const TextFile& file, bool isReadable) {
    setenv("KORVEL_REGISTRY", file.Path().c_str(), 1);
    const Ctl::Configuration configuration = Ctl::ReadConfiguration();
    Require(isReadable || !configuration.faults.empty(), "what the library cannot read has a fault");
    Ctl::Inspect(configuration);
    Ctl::InspectSource(configuration);
}

}  // namespace
}  // namespace Korvel::Fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Korvel::Fuzz::TextFile file;
    file.Write(std::string(reinterpret_cast<const char*>(data), size));
    std::string text;
    try {
        const Korvel::KRegDocument document(file.Path());
        text = Korvel::KRegEncoding::Read(file.Path());
    } catch (const Korvel::KRegError&) {
        Korvel::Fuzz::Check(file, false);
        return 0;
    }
    Korvel::Fuzz::Check(file, true);
    file.Write(text);
    Korvel::Fuzz::Change(file, text, size % 2 == 0);
    return 0;
}
