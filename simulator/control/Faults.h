#pragma once

#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include <cstddef>
#include "control/Fault.h"

namespace Korvel::Sim {

/// The faults that are armed, used up ones included. Safe to use from many threads.
class Faults {
public:
    /// Arms a fault and returns its number.
    std::uint64_t Arm(Fault fault);

    /// Returns the fault that this connection meets: the one armed first that matches and is not used up.
    std::optional<Fault> TakeForConnection(std::size_t array, int port);

    /// The same for a request.
    std::optional<Fault> TakeForRequest(std::size_t array, int port, const std::string& method,
                                        const std::string& target);

    /// Returns all faults as JSON, in the order in which they were armed.
    nlohmann::json ToJson() const;

    /// Returns the fault with this number. Throws std::out_of_range when there is none.
    Fault Find(std::uint64_t id) const;

    /// Forgets the fault with this number. Throws std::out_of_range when there is none.
    void Forget(std::uint64_t id);

    /// Forgets all faults.
    void Clear();

private:
    std::size_t PlaceOf(std::uint64_t id) const;
    template <typename Matches>
    std::optional<Fault> Take(const Matches& matches);

    mutable std::mutex mutex;
    std::vector<Fault> faults;
    std::uint64_t lastId = 0;
};

}  // namespace Korvel::Sim
