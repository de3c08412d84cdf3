#pragma once

#include <string>
#include <vector>

namespace VssExample {

/// One identifier of a disk, as its identification page lists it.
struct StorageIdentifier {
    int codeSet = 0;  ///< 1 binary, 2 ASCII, 3 UTF-8
    int type = 0;     ///< 3 is the NAA identifier
    std::string bytes;
};

/// @return the identifier by which an array knows the disk: the NAA identifier as lower-case hexadecimal digits; empty
///         when the disk has none
std::string IeeeIdentifierOf(const std::vector<StorageIdentifier>& identifiers);

/// @return the NAA identifier of a volume that an array knows by this identifier, in the binary code set
/// @throws std::invalid_argument when it is not an even number of hexadecimal digits
StorageIdentifier NaaIdentifier(const std::string& ieeeIdentifier);

}  // namespace VssExample
