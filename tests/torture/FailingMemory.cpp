#include "torture/FailingMemory.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <link.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string_view>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);
}

namespace Korvel::Torture {

namespace {

struct Code {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
    Owner owner = Owner::Other;
    bool program = false;
    bool runtime = false;
};

struct Block {
    const void* address = nullptr;
    std::uint64_t number = 0;
    Owner owner = Owner::Other;
};

std::array<Code, 64> codes;
std::size_t codeCount = 0;

bool counting = false;
std::uint64_t counted = 0;
std::uint64_t firstFailing = 0;
bool failsAll = false;
Owner* ownersOut = nullptr;
std::size_t ownersCapacity = 0;
Place failedAt;

// Open addressing; a freed block's entry stays as a gap.
constexpr std::size_t blockCapacity = std::size_t{1} << 17U;
std::array<Block, blockCapacity> blocks;
const char gap = 0;

Block& Entry(const void* address) {
    std::size_t at = reinterpret_cast<std::uintptr_t>(address) / 16 * 2654435761U % blockCapacity;
    while (blocks[at].address != nullptr && blocks[at].address != address) {
        at = (at + 1) % blockCapacity;
    }
    return blocks[at];
}

int LearnObject(dl_phdr_info* info, std::size_t, void*) {
    if (codeCount == codes.size()) {
        return 1;
    }
    const std::string_view name = info->dlpi_name;
    const auto isOneOf = [&](std::initializer_list<const char*> parts) {
        for (const char* part : parts) {
            if (name.find(part) != std::string_view::npos) {
                return true;
            }
        }
        return false;
    };
    Code& code = codes[codeCount++];
    code.begin = UINTPTR_MAX;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr)& part = info->dlpi_phdr[i];
        if (part.p_type == PT_LOAD) {
            code.begin = std::min<std::uintptr_t>(code.begin, info->dlpi_addr + part.p_vaddr);
            code.end = std::max<std::uintptr_t>(code.end, info->dlpi_addr + part.p_vaddr + part.p_memsz);
        }
    }
    code.program = name.empty();
    code.runtime = isOneOf({"libc.so", "libstdc++", "libgcc", "ld-linux", "vdso", "libm.so"});
    code.owner = code.program || isOneOf({"libstdc++"}) ? Owner::Library
                 : isOneOf({"libxml2"})                 ? Owner::LibXml2
                 : isOneOf({"libcurl"})                 ? Owner::LibCurl
                 : isOneOf({"libssl", "libcrypto"})     ? Owner::OpenSsl
                                                        : Owner::Other;
    return 0;
}

const Code& CodeAt(const void* address) {
    static const Code nobody;
    const auto at = reinterpret_cast<std::uintptr_t>(address);
    for (std::size_t i = 0; i < codeCount; ++i) {
        if (at >= codes[i].begin && at < codes[i].end) {
            return codes[i];
        }
    }
    return nobody;
}

template <typename Really>
void* Allocate(Really really) {
    if (!counting) {
        return really();
    }
    ++counted;
    if (ownersOut != nullptr && counted <= ownersCapacity) {
        ownersOut[counted - 1] = WhereCalled().owner;
    }
    if (firstFailing != 0 && (counted == firstFailing || (failsAll && counted > firstFailing))) {
        if (counted == firstFailing) {
            failedAt = WhereCalled();
        }
        errno = ENOMEM;
        return nullptr;
    }
    return really();
}

void* Hold(void* block, const void* caller) {
    if (counting && block != nullptr) {
        Entry(block) = {block, counted, CodeAt(caller).owner};
    }
    return block;
}

bool Forget(const void* address) {
    Block& entry = Entry(address);
    const bool held = address != nullptr && entry.address == address;
    if (held) {
        entry = {&gap, 0, Owner::Other};
    }
    return held;
}

}  // namespace

void LearnCode() {
    void* frame = nullptr;
    backtrace(&frame, 1);  // loads what it needs
    dl_iterate_phdr(LearnObject, nullptr);
}

void StartCounting(std::uint64_t first, bool all, Owner* owners, std::size_t capacity) {
    firstFailing = first;
    failsAll = all;
    ownersOut = owners;
    ownersCapacity = capacity;
    counting = true;
}

std::uint64_t StopCounting() {
    counting = false;
    return counted;
}

const Place& FailedAt() {
    return failedAt;
}

bool IsHeld(const void* block) {
    return block != nullptr && Entry(block).address == block;
}

std::size_t Left(Owner owner, std::uint64_t& first) {
    std::size_t left = 0;
    for (const Block& block : blocks) {
        if (block.number != 0 && block.owner == owner) {
            first = left++ == 0 ? block.number : std::min(first, block.number);
        }
    }
    return left;
}

namespace {

/// Tells whether an address lies in this file's functions that stand for the runtime's.
bool StandsIn(const void* address) {
    Dl_info info{};
    return CodeAt(address).program && dladdr(address, &info) != 0 && info.dli_sname != nullptr &&
           std::string_view("malloc calloc realloc free").find(info.dli_sname) != std::string_view::npos;
}

}  // namespace

Place WhereCalled() {
    std::array<void*, 64> frames{};
    const auto depth = static_cast<std::size_t>(backtrace(frames.data(), static_cast<int>(frames.size())));
    // Behind this file's functions, or, in a signal's handler, behind those that the signal has interrupted.
    const auto end = frames.begin() + static_cast<std::ptrdiff_t>(depth);
    auto from = std::find_if(frames.begin(), end, StandsIn);
    from = from != end ? from + 1 : std::find_if_not(frames.begin(), end, [](void* f) { return CodeAt(f).program; });
    from = std::find_if_not(from, end, [](void* f) { return CodeAt(f).runtime; });
    auto at = static_cast<std::size_t>(from - frames.begin());
    Place place;
    const Code& code = at < depth ? CodeAt(frames[at]) : CodeAt(nullptr);
    place.owner = code.owner;
    // The innermost of its functions that has a name.
    for (Dl_info info{}; at < depth && place.name.front() == '\0' && &CodeAt(frames[at]) == &code; ++at) {
        if (dladdr(frames[at], &info) != 0 && (info.dli_sname != nullptr || code.program)) {
            const char* const file = std::strrchr(info.dli_fname, '/');
            std::snprintf(place.name.data(), place.name.size(), "%s %s", file == nullptr ? info.dli_fname : file + 1,
                          code.program ? "-" : info.dli_sname);
        }
    }
    return place;
}

}  // namespace Korvel::Torture

using Korvel::Torture::Allocate;
using Korvel::Torture::Forget;
using Korvel::Torture::Hold;

extern "C" {

void* malloc(std::size_t size) {
    return Hold(Allocate([&] { return __libc_malloc(size); }), __builtin_return_address(0));
}

void* calloc(std::size_t count, std::size_t size) {
    return Hold(Allocate([&] { return __libc_calloc(count, size); }), __builtin_return_address(0));
}

// A block that lived before the counting stays out of the account.
void* realloc(void* block, std::size_t size) {
    void* const moved = Allocate([&] { return __libc_realloc(block, size); });
    if (moved != nullptr && (block == nullptr || Forget(block))) {
        Hold(moved, __builtin_return_address(0));
    }
    return moved;
}

void free(void* block) {
    Forget(block);
    __libc_free(block);
}
}
