#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Options.h"
#include "array/Inventory.h"
#include "control/Faults.h"
#include "control/Journal.h"
#include "wire/ArrayServer.h"
#include "wire/Certificate.h"

namespace Korvel::Sim {

/// All arrays with the faults and the journal that they share.
class Simulator {
public:
    /// Makes the arrays and begins to serve them. Throws std::runtime_error when a port is not free or the file with
    /// their state cannot be read.
    explicit Simulator(const Options& options);

    /// Returns the arrays, which this object owns.
    const std::vector<std::unique_ptr<ArrayServer>>& Arrays() const { return arrays; }

    /// Returns the faults.
    Faults& ArmedFaults() { return faults; }

    /// Returns the journal.
    Journal& WireJournal() { return journal; }

    /// Puts every array back to what it held at start and forgets faults and journal.
    void Reset();

    /// Returns what every array holds.
    std::vector<Inventory> Held() const;

    /// Returns the registry entries of the arrays, in the registry editor's export format.
    std::string RegistryText() const;

private:
    std::vector<Inventory> atStart;
    Certificate certificate;
    Faults faults;
    Journal journal;
    std::vector<std::unique_ptr<ArrayServer>> arrays;
};

}  // namespace Korvel::Sim
