#pragma once

#include <string>
#include <string_view>

namespace Korvel {

/// The text of a registry file as UTF-8 without a byte-order mark.
class KRegEncoding {
public:
    /// Reads a file as UTF-8 or, if it begins with that byte-order mark, UTF-16LE.
    /// @throws KRegError if it can't be read, is no regular file, is longer than 64 MiB, or isn't such a text
    static std::string Read(const std::string& path);

private:
    static std::string Decode(const std::string& path, std::string_view bytes);
};

}  // namespace Korvel
