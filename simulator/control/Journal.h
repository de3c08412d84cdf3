#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <nlohmann/json.hpp>

#include "wire/Request.h"

namespace Korvel::Sim {

/// The requests of all arrays in the order in which they arrived. Safe to use from many threads.
class Journal {
public:
    /// Keeps at most the last `capacity` requests, and no more than 256 MiB of them: but always the last.
    explicit Journal(std::size_t capacity);

    /// Adds a request.
    void Add(Request request);

    /// Returns {"entries": [...], "forgotten": N}: the requests from the sequence number `from` on, and how many were
    /// given up because the journal was full.
    nlohmann::json ToJson(std::uint64_t from) const;

    /// Forgets everything; the next request has the sequence number 1 again.
    void Clear();

private:
    mutable std::mutex mutex;
    std::size_t limit;
    std::size_t bytes = 0;  // of all requests that are kept
    std::uint64_t forgotten = 0;
    std::deque<Request> requests;
};

}  // namespace Korvel::Sim
