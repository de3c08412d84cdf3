#pragma once

#include <memory>
#include <string>
#include <vector>

#include "KArrayServer.h"
#include "KCertificate.h"
#include "KFaults.h"
#include "KJournal.h"
#include "KOptions.h"

namespace Korvel {

/// All arrays with the faults and the journal that they share.
class KSimulator {
public:
    /// Makes the arrays and begins to serve them. Throws std::runtime_error when a port is not free.
    explicit KSimulator(const KOptions& options);

    /// Returns the arrays, which this object owns.
    const std::vector<std::unique_ptr<KArrayServer>>& Arrays() const { return arrays; }

    /// Returns the faults.
    KFaults& Faults() { return faults; }

    /// Returns the journal.
    KJournal& Journal() { return journal; }

    /// Puts every array back to what it held at start and forgets faults and journal.
    void Reset();

    /// Returns the registry entries of the arrays, in the registry editor's export format.
    std::string RegistryText() const;

private:
    KFill fill;
    KCertificate certificate;
    KFaults faults;
    KJournal journal;
    std::vector<std::unique_ptr<KArrayServer>> arrays;
};

}  // namespace Korvel
