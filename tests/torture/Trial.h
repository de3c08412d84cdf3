#pragma once

#include <libxml/tree.h>
#include <libxml/xpath.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "torture/Calls.h"
#include "torture/FailingMemory.h"

namespace Korvel::Torture {

/// What becomes of a call whose allocation fails. "held" are OpenSSL's own blocks; a point is missed when the call made
/// fewer allocations than it had made before.
enum class Verdict { Crash, Hang, Unharmed, Threw, Wrong, Changed, Descriptor, NextCall, Left, Held, Missed };

/// How many owners of allocations there are.
constexpr std::size_t OwnerCount = 5;

/// What a call does when nothing fails.
struct Reference {
    int status = -1;
    std::array<char, 2048> known{};
    std::array<char, 2048> given{};
    std::uint64_t counted = 0;
    std::array<std::size_t, OwnerCount> left{};
    std::chrono::steady_clock::duration took{};
    std::array<Owner, 65536> owners{};
};

/// An allocation that fails, counted from 1; `all`: with every one behind it.
struct Point {
    std::uint64_t number = 0;
    bool all = false;
};

/// Keeps a text where another process can read it; cuts what does not fit.
template <std::size_t Capacity>
void Store(std::array<char, Capacity>& text, const std::string& value) {
    text.back() = '\0';
    std::strncpy(text.data(), value.c_str(), Capacity - 1);
}

/// Runs a call with a point that fails; everything that is to be compared is looked at before anything else runs.
class Trial {
public:
    Trial(const Call& triedCall, Scene& triedScene) : call(triedCall), scene(triedScene) {}

    /// Runs the call.
    /// @param learnt receives the owners of the allocations, unless null
    void Run(Point point, Reference* learnt);

    /// Fills in what the call has done. Nothing may have failed. Ends the scene.
    void Teach(Reference& reference);

    /// Compares with what the call does when nothing fails. Ends the scene.
    /// @param text receives what was found
    Verdict Judge(const Reference& reference, std::string& text);

private:
    bool GivenAsBefore(const std::string& afterwards) const;
    bool NextWorks(int expected);
    void Clear();

    const Call& call;
    Scene& scene;
    Point tried;
    std::string known;
    std::string given;
    int status = -1;
    bool threw = false;
    bool sameDescriptors = false;
    std::uint64_t counted = 0;
    std::chrono::steady_clock::duration took{};
    xmlDocPtr document = nullptr;
    xmlXPathObjectPtr result = nullptr;
};

}  // namespace Korvel::Torture
