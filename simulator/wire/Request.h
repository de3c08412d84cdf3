#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace Korvel::Sim {

/// A request as it stood on the wire.
struct Request {
    std::size_t array = 0;                                     ///< number of the array, from 0
    std::string method;                                        ///< first word of the request line
    std::string target;                                        ///< second word: the path, nothing decoded
    std::string version;                                       ///< third word
    std::vector<std::pair<std::string, std::string>> headers;  ///< in the order sent, names as sent
    std::string body;                                          ///< without transfer encoding
    bool newConnection = true;                                 ///< whether it was the first of its connection
    std::uint64_t fault = 0;                                   ///< the fault it met, 0 for none

    /// Takes a request apart whose request line and headers are `head`, without the empty line behind them.
    static Request FromHead(const std::string& head);

    /// Returns the value of the first header `name`, matched without regard to case; empty when there is none.
    std::string Header(const std::string& name) const;
};

}  // namespace Korvel::Sim
