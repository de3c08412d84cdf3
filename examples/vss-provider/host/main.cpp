// Plays the VSS service: calls a hardware provider in the documented order, step by step, and tells how long each
// takes.

#include <windows.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include "host/ProviderClient.h"

namespace VssExample {
namespace {

struct Options {
    std::string library;
    std::vector<std::string> luns;
    std::string abortAfter;
    int repeat = 1;
};

struct Step {
    std::string name;
    std::function<HRESULT()> call;
};

struct Usage {
    DWORD handles = 0;
    std::size_t memory = 0;  ///< bytes in use on all heaps
};

Usage UsageNow() {
    Usage usage;
    for (std::uintptr_t number = 4; number < 0x10000; number += 4) {  // one by one: not every system tells the number
        DWORD flags = 0;
        usage.handles += GetHandleInformation(reinterpret_cast<HANDLE>(number), &flags) != 0 ? 1 : 0;
    }
    HANDLE heaps[256] = {};
    const DWORD count = std::min<DWORD>(GetProcessHeaps(256, heaps), 256);
    for (DWORD at = 0; at < count; ++at) {
        HeapLock(heaps[at]);
        for (PROCESS_HEAP_ENTRY entry = {}; HeapWalk(heaps[at], &entry) != 0;) {
            usage.memory += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
        }
        HeapUnlock(heaps[at]);
    }
    return usage;
}

/// Runs a step, tells how long it took and what came of it.
bool Run(const Step& step, bool quiet) {
    const auto begin = std::chrono::steady_clock::now();
    const HRESULT result = step.call();
    const auto taken = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - begin);
    if (!quiet || result != S_OK) {
        std::cout << step.name << ": 0x" << std::hex << static_cast<unsigned long>(result) << std::dec << ", "
                  << taken.count() << " us\n";
    }
    return result == S_OK;
}

/// One set from its first call to the end of its volumes.
/// @return whether every step succeeded
bool RunCycle(ProviderClient& provider, const Options& options, bool quiet) {
    GUID set = {};
    CoCreateGuid(&set);
    ProviderClient::Ids targets;
    std::vector<Step> steps = {{"AreLunsSupported", [&] {
                                    bool supported = false;
                                    const HRESULT result = provider.AreLunsSupported(options.luns, supported);
                                    return result == S_OK && !supported ? S_FALSE : result;
                                }}};
    for (const std::string& lun : options.luns) {
        steps.push_back({"BeginPrepareSnapshot", [&] {
                             GUID snapshot = {};
                             CoCreateGuid(&snapshot);
                             return provider.BeginPrepareSnapshot(set, snapshot, {lun});
                         }});
    }
    const auto count = static_cast<LONG>(options.luns.size());
    const std::vector<Step> rest = {
        {"EndPrepareSnapshots", [&] { return provider.Sets().EndPrepareSnapshots(set); }},
        {"PreCommitSnapshots", [&] { return provider.Sets().PreCommitSnapshots(set); }},
        {"CommitSnapshots", [&] { return provider.Sets().CommitSnapshots(set); }},
        {"PostCommitSnapshots", [&] { return provider.Sets().PostCommitSnapshots(set, count); }},
        {"GetTargetLuns", [&] { return provider.GetTargetLuns(options.luns, targets); }},
        {"LocateLuns", [&] { return provider.LocateLuns(targets); }},
    };
    steps.insert(steps.end(), rest.begin(), rest.end());
    for (std::size_t at = 0; at < steps.size(); ++at) {
        const bool done = Run(steps[at], quiet);
        const bool isLast = at + 1 == steps.size() || steps[at + 1].name != steps[at].name;
        if (!done || (isLast && steps[at].name == options.abortAfter)) {
            Run({"AbortSnapshots", [&] { return provider.Sets().AbortSnapshots(set); }}, quiet);
            return done;
        }
    }
    bool removed = true;
    for (const std::string& target : targets) {
        removed = Run({"OnLunEmpty", [&] { return provider.OnLunEmpty(target); }}, quiet) && removed;
    }
    return removed;
}

/// @return whether everything succeeded, and many sets have left no more behind than a few
bool RunAll(const Options& options) {
    ProviderClient::Register(options.library);
    ProviderClient provider;
    if (!Run({"OnLoad", [&] { return provider.OnLoad(); }}, false)) {
        return false;
    }
    bool done = true;
    Usage early = {};
    for (int at = 0; at < options.repeat && done; ++at) {
        done = RunCycle(provider, options, at > 0);
        if (at == options.repeat / 4) {
            early = UsageNow();
        }
    }
    const Usage late = UsageNow();
    done = Run({"OnUnload", [&] { return provider.OnUnload(false); }}, false) && done;
    if (options.repeat > 1) {
        std::cout << options.repeat << " sets: handles " << early.handles << " after a quarter, " << late.handles
                  << " at the end; memory " << early.memory << " bytes and " << late.memory << " bytes\n";
        const bool measured = early.handles > 0 && early.memory > 0;
        done = done && measured && late.handles <= early.handles + 2 && late.memory <= early.memory + early.memory / 50;
    }
    return done;
}

}  // namespace
}  // namespace VssExample

int main(int argc, char** argv) {
    CLI::App app("Plays the VSS service for a hardware provider: one snapshot set over the LUNs, step by step.",
                 "vss-host");
    VssExample::Options options;
    app.add_option("--dll", options.library, "the provider's library; it is registered first")->required();
    app.add_option("--luns", options.luns, "IEEE identifiers of the LUNs, 32 hexadecimal digits each")->required();
    app.add_option("--abort-after", options.abortAfter, "abort the set after this step, for example CommitSnapshots");
    app.add_option("--repeat", options.repeat, "so many sets, one after the other")->check(CLI::PositiveNumber);
    CLI11_PARSE(app, argc, argv);
    try {
        return VssExample::RunAll(options) ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << "vss-host: " << error.what() << '\n';
        return 1;
    }
}
