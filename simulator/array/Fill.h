#pragma once

#include <cstddef>

namespace Korvel::Sim {

/// How an array is filled at start.
struct Fill {
    std::size_t volumes = 4;    ///< volumes of the array
    std::size_t groups = 0;     ///< consistency groups they are spread over; 0: one group per volume
    std::size_t snapshots = 0;  ///< snapshots of every group
    std::size_t servers = 1;    ///< hosts the array knows
    std::size_t drives = 2;     ///< drives built in
};

}  // namespace Korvel::Sim
