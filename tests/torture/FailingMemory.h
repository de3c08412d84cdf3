#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// The process's allocations, counted, failed and kept account of: malloc and its kin are this file's. One thread only.
namespace Korvel::Torture {

/// Who made an allocation.
enum class Owner : std::uint8_t { Library, LibXml2, LibCurl, OpenSsl, Other };

/// A place in somebody's code, as the names of a library and its nearest exported function.
struct Place {
    Owner owner = Owner::Other;
    std::array<char, 96> name{};
};

/// Learns which code lies where. Call it once, when everything is loaded.
void LearnCode();

/// Starts to count. Allocation `first` fails, and with `all` every one after it; 0 fails none.
/// @param owners receives the owner of each allocation, unless null
/// @param capacity how many it takes
void StartCounting(std::uint64_t first, bool all, Owner* owners = nullptr, std::size_t capacity = 0);

/// Stops counting and failing; what is freed of what was counted is still noticed.
/// @return the allocations asked for
std::uint64_t StopCounting();

/// @return where the first allocation that failed was asked for
const Place& FailedAt();

/// @return whether a block was allocated while counting and is not freed
bool IsHeld(const void* block);

/// @return how many such blocks an owner has
/// @param first receives the number of the first of them, when there is one
std::size_t Left(Owner owner, std::uint64_t& first);

/// @return the innermost place in code that is neither the program's own handler nor the runtime's
Place WhereCalled();

}  // namespace Korvel::Torture
