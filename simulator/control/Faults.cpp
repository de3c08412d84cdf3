#include "control/Faults.h"

#include <algorithm>
#include <stdexcept>

namespace Korvel::Sim {

std::uint64_t Faults::Arm(Fault fault) {
    const std::lock_guard lock(mutex);
    fault.id = ++lastId;
    faults.push_back(std::move(fault));
    return lastId;
}

std::optional<Fault> Faults::TakeForConnection(std::size_t array, int port) {
    return Take([&](const Fault& fault) { return fault.MatchesConnection(array, port); });
}

std::optional<Fault> Faults::TakeForRequest(std::size_t array, int port, const std::string& method,
                                            const std::string& target) {
    return Take([&](const Fault& fault) { return fault.MatchesRequest(array, port, method, target); });
}

template <typename Matches>
std::optional<Fault> Faults::Take(const Matches& matches) {
    const std::lock_guard lock(mutex);
    for (Fault& fault : faults) {
        if (fault.fired == fault.count || !matches(fault)) {
            continue;
        }
        if (fault.skipped < fault.skip) {
            ++fault.skipped;
            continue;
        }
        ++fault.fired;
        return fault;
    }
    return std::nullopt;
}

nlohmann::json Faults::ToJson() const {
    const std::lock_guard lock(mutex);
    nlohmann::json all = nlohmann::json::array();
    for (const auto& fault : faults) {
        all.push_back(fault.ToJson());
    }
    return all;
}

std::size_t Faults::PlaceOf(std::uint64_t id) const {
    const auto found = std::find_if(faults.begin(), faults.end(), [id](const Fault& fault) { return fault.id == id; });
    if (found == faults.end()) {
        throw std::out_of_range("there is no fault " + std::to_string(id));
    }
    return static_cast<std::size_t>(found - faults.begin());
}

Fault Faults::Find(std::uint64_t id) const {
    const std::lock_guard lock(mutex);
    return faults[PlaceOf(id)];
}

void Faults::Forget(std::uint64_t id) {
    const std::lock_guard lock(mutex);
    faults.erase(faults.begin() + static_cast<std::ptrdiff_t>(PlaceOf(id)));
}

void Faults::Clear() {
    const std::lock_guard lock(mutex);
    faults.clear();
}

}  // namespace Korvel::Sim
