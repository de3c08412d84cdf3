#pragma once

#include <cstddef>
#include <string_view>

/// \file
/// Where the configuration lies, and how long a text may be before it ends the process: everything that the library
/// formats goes into a buffer of fixed capacity, and what does not fit would reach the wrong thing if it were cut.
/// Kept: fatal-overflow.

namespace Korvel {

/// Capacities of the buffers in characters, the terminating zero included.
inline constexpr std::size_t KRegistryPathCapacity = 260;  ///< an array's subkey
inline constexpr std::size_t KRequestTextCapacity = 256;   ///< a URL, an API path or a header line
inline constexpr std::size_t KErrorTextCapacity = 512;     ///< what a KException says about an HTTP status
inline constexpr std::size_t KSubkeyNameCapacity = 256;    ///< the name of a subkey as it is listed

/// What the texts are formatted by.
inline constexpr char KArrayKeyFormat[] = R"(SOFTWARE\Korvel\HwProvider\%s)";  ///< below HKEY_LOCAL_MACHINE: address
inline constexpr char KUrlFormat[] = "https://%s%s";                           ///< address, absolute API path
inline constexpr char KAccessKeyHeaderFormat[] = "X-Access-Key: %s";           ///< access key

/// The key below HKEY_LOCAL_MACHINE that has one subkey for each array; a zero does not end it.
inline constexpr std::string_view KRegistryRootKey(KArrayKeyFormat, sizeof KArrayKeyFormat - sizeof R"(\%s)");
/// The value of an array's subkey that holds its access key.
inline constexpr char KAccessKeyValue[] = "AccessKey";
/// The most bytes that such a value may have, a terminating zero included if there is one.
inline constexpr std::size_t KMaxStoredValueSize = 256;

/// @return how many characters are left for the arguments of a format that takes `conversions` times "%s"
constexpr std::size_t KRoomFor(std::size_t capacity, std::string_view format, std::size_t conversions) {
    return capacity - 1 - (format.size() - 2 * conversions);
}

/// The most characters that an address may have which is read from the registry.
inline constexpr std::size_t KMaxAddressLength = KRoomFor(KRegistryPathCapacity, KArrayKeyFormat, 1);
/// The most characters that an access key may have.
inline constexpr std::size_t KMaxAccessKeyLength = KRoomFor(KRequestTextCapacity, KAccessKeyHeaderFormat, 1);
/// The most characters that a URL or an absolute API path may have.
inline constexpr std::size_t KMaxUrlLength = KRequestTextCapacity - 1;

}  // namespace Korvel
