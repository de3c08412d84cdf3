#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace Korvel {

/// A request as it stood on the wire.
struct KRequest {
    std::size_t array = 0;                                     ///< number of the array, from 0
    std::string method;                                        ///< first word of the request line
    std::string target;                                        ///< second word: the path, nothing decoded
    std::string version;                                       ///< third word
    std::vector<std::pair<std::string, std::string>> headers;  ///< in the order sent, names as sent
    std::string body;                                          ///< without transfer encoding
    bool newConnection = true;                                 ///< whether it was the first of its connection
    std::uint64_t fault = 0;                                   ///< the fault it met, 0 for none

    /// Takes a request apart whose request line and headers are `head`, without the empty line behind them.
    static KRequest FromHead(const std::string& head);

    /// Returns the value of the first header `name`, matched without regard to case; empty when there is none.
    std::string Header(const std::string& name) const;
};

/// The requests of all arrays in the order in which they arrived. Safe to use from many threads.
class KJournal {
public:
    /// Keeps at most the last `capacity` requests.
    explicit KJournal(std::size_t capacity);

    /// Adds a request.
    void Add(KRequest request);

    /// Returns {"entries": [...], "forgotten": N}: the requests from the sequence number `from` on, and how many were
    /// given up because the journal was full.
    nlohmann::json ToJson(std::uint64_t from) const;

    /// Forgets everything; the next request has the sequence number 1 again.
    void Clear();

private:
    mutable std::mutex mutex;
    std::size_t limit;
    std::uint64_t forgotten = 0;
    std::deque<KRequest> requests;
};

}  // namespace Korvel
