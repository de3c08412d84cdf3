#include "Simulator.h"

#include "array/Inventory.h"
#include "foundation/KLimits.h"

namespace Korvel::Sim {

Simulator::Simulator(const Options& options)
    : fill(options.fill), certificate(options.address), journal(options.journal) {
    for (std::size_t i = 0; i < options.arrays; ++i) {
        arrays.push_back(
            std::make_unique<ArrayServer>(i, Inventory::Filled(fill, i), certificate.Context(), faults, journal));
        arrays.back()->Start(options.address, options.port == 0 ? 0 : options.port + static_cast<int>(i));
    }
}

void Simulator::Reset() {
    for (std::size_t i = 0; i < arrays.size(); ++i) {
        arrays[i]->State().SetInventory(Inventory::Filled(fill, i));
    }
    faults.Clear();
    journal.Clear();
}

std::string Simulator::RegistryText() const {
    std::string text = "Windows Registry Editor Version 5.00\n";
    for (const auto& array : arrays) {
        text += "\n[HKEY_LOCAL_MACHINE\\" + std::string(KRegistryRootKey) + "\\" + array->Address() + "]\n\"" +
                KAccessKeyValue + "\"=\"" + array->Key() + "\"\n";
    }
    return text;
}

}  // namespace Korvel::Sim
