#include "Simulator.h"

#include <utility>
#include <vector>

#include "array/Inventory.h"
#include "control/StateFile.h"
#include "foundation/KLimits.h"

namespace Korvel::Sim {

namespace {

std::vector<Inventory> AtStart(const Options& options) {
    if (!options.state.empty()) {
        return StateFile::Read(options.state);
    }
    std::vector<Inventory> inventories;
    for (std::size_t i = 0; i < options.arrays; ++i) {
        inventories.push_back(Inventory::Filled(options.fill, i));
    }
    return inventories;
}

}  // namespace

Simulator::Simulator(const Options& options)
    : atStart(AtStart(options)), certificate(options.address), journal(options.journal) {
    for (std::size_t i = 0; i < atStart.size(); ++i) {
        arrays.push_back(std::make_unique<ArrayServer>(i, atStart[i], certificate.Context(), faults, journal));
        arrays.back()->Start(options.address, options.port == 0 ? 0 : options.port + static_cast<int>(i));
    }
}

void Simulator::Reset() {
    for (std::size_t i = 0; i < arrays.size(); ++i) {
        arrays[i]->State().SetInventory(atStart[i]);
    }
    faults.Clear();
    journal.Clear();
}

std::vector<Inventory> Simulator::Held() const {
    std::vector<Inventory> held;
    for (const auto& array : arrays) {
        held.push_back(array->State().Held());
    }
    return held;
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
