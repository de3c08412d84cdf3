#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace Korvel {

/// A registry file that can't be read. what() is "PATH:LINE: FAULT", or "PATH: FAULT" where no line is to blame.
class KRegError : public std::runtime_error {
public:
    /// @param line the line's number, from 1; 0 if the fault is the file's as a whole
    KRegError(const std::string& path, std::size_t line, const std::string& fault);
};

}  // namespace Korvel
