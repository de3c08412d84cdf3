#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Korvel {

/// What a line of a registry file says, together with the lines that a hexadecimal value goes on with.
struct KRegStatement {
    enum class Kind { Key, KeyRemoval, Value, ValueRemoval };

    Kind kind = Kind::Key;
    std::string name;        ///< a key's path from its hive on, or a value's name; the default value's is empty
    unsigned long type = 0;  ///< the registry's number for a value's type
    std::vector<unsigned char> bytes;  ///< a value's data as it is stored
    std::size_t line = 0;              ///< where it begins, from 1
    std::size_t begin = 0;             ///< where it begins in the file's text, in bytes
    std::size_t data = 0;              ///< where a value's data begins, or the '-' that removes it
    std::size_t end = 0;               ///< behind its last character; a comment may follow
};

}  // namespace Korvel
