#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "core/LunIdentity.h"
#include "provider/ProviderUnderTest.h"
#include "support/Simulator.h"
#include "support/TestRegistry.h"

#ifdef KORVEL_FAILING_NEW

namespace {
thread_local std::size_t allocationsLeft = 0;  // the last of them fails; 0: none does
}

void* operator new(std::size_t size) {
    void* const memory = allocationsLeft != 0 && --allocationsLeft == 0 ? nullptr : std::malloc(size);
    return memory == nullptr ? throw std::bad_alloc() : memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

#endif

namespace VssExample {
namespace {

using nlohmann::json;
using testing::ElementsAreArray;
using Ids = ProviderUnderTest::Ids;

const std::string firstSet = "{11111111-2222-3333-4444-555555555555}";
const std::string secondSet = "{99999999-2222-3333-4444-555555555555}";

/// The identifier of a volume that the simulator has by default.
std::string Id(int array, int number) {
    return "6001f3a0000" + std::to_string(array + 1) + "0000000000000000000" + std::to_string(number);
}

std::string SnapshotId(std::size_t number) {
    return "{aaaaaaaa-2222-3333-4444-55555555555" + std::to_string(number) + "}";
}

const Ids luns = {Id(0, 1), Id(0, 2), Id(1, 1)};  // three volumes on two arrays

struct Step {
    std::string name;
    std::function<std::string(ProviderUnderTest&)> call;
};

class ProviderTest : public Korvel::Testing::SimulatedTest {
protected:
    void SetUp() override {
        SimulatedTest::SetUp();
        for (std::size_t array = 0; array < 2; ++array) {
            registry.SetText(simulator.Address(array), "AccessKey", simulator.Key(array));
        }
        before = Contents();
    }

    /// What the arrays hold, without numbers that only tell of the past.
    json Contents() {
        json contents = json::array();
        for (std::size_t array = 0; array < 2; ++array) {
            json state = simulator.State(array);
            state.erase("nextNumber");
            for (auto group = state["snapshots"].begin(); group != state["snapshots"].end();) {
                group = group->empty() ? state["snapshots"].erase(group) : std::next(group);
            }
            contents.push_back(state);
        }
        return contents;
    }

    /// The calls of the service for one set, in the documented order.
    std::vector<Step> Cycle(const std::string& set) {
        std::vector<Step> steps = {{"OnLoad", [](auto& provider) { return provider.OnLoad(); }},
                                   {"AreLunsSupported", [](auto& provider) {
                                        bool supported = false;
                                        const std::string result = provider.AreLunsSupported(luns, supported);
                                        return result == "ok" && !supported ? "not supported" : result;
                                    }}};
        for (std::size_t at = 0; at < luns.size(); ++at) {
            steps.push_back({"BeginPrepareSnapshot", [set, at](auto& provider) {
                                 return provider.BeginPrepareSnapshot(set, SnapshotId(at), {luns[at]});
                             }});
        }
        const std::vector<Step> rest = {
            {"EndPrepareSnapshots", [set](auto& provider) { return provider.EndPrepareSnapshots(set); }},
            {"PreCommitSnapshots", [set](auto& provider) { return provider.PreCommitSnapshots(set); }},
            {"CommitSnapshots", [set](auto& provider) { return provider.CommitSnapshots(set); }},
            {"PostCommitSnapshots", [set](auto& provider) { return provider.PostCommitSnapshots(set, 3); }},
            {"GetTargetLuns", [this](auto& provider) { return provider.GetTargetLuns(luns, targets); }},
            {"LocateLuns", [this](auto& provider) { return provider.LocateLuns(targets); }}};
        steps.insert(steps.end(), rest.begin(), rest.end());
        return steps;
    }

    /// Runs steps until one fails. Returns its name and result, "" when all succeed.
    static std::string Run(ProviderUnderTest& provider, const std::vector<Step>& steps) {
        for (const Step& step : steps) {
            if (const std::string result = step.call(provider); result != "ok") {
                return step.name + ": " + result;
            }
        }
        return "";
    }

    void RemoveAll(ProviderUnderTest& provider) {
        for (const std::string& target : targets) {
            EXPECT_EQ(provider.OnLunEmpty(target), "ok");
        }
    }

    /// The requests since the last call, array by array.
    std::vector<std::string> Wire() {
        std::vector<std::string> wire;
        for (const auto& entry : simulator.Journal()) {
            wire.push_back(std::to_string(entry.array) + " " + entry.method + " " + entry.target);
        }
        simulator.ClearJournal();
        std::stable_sort(wire.begin(), wire.end());
        return wire;
    }

    /// Whatever the arrays hold that they did not hold before has to stand in the log by its name.
    void ExpectNothingUnnamed(const std::string& log) {
        const json after = Contents();
        for (std::size_t array = 0; array < 2; ++array) {
            ExpectNamed(before[array]["volumes"], after[array]["volumes"], log);
            for (const auto& [group, snapshots] : after[array]["snapshots"].items()) {
                ExpectNamed(json::array(), snapshots, log);
            }
        }
    }

    static void ExpectNamed(const json& old, const json& entries, const std::string& log) {
        for (const json& entry : entries) {
            if (std::find(old.begin(), old.end(), entry) != old.end()) {
                continue;
            }
            // A name that the array never told is named by what it ends in or begins with.
            const std::string name = entry["name"];
            const std::string shown = entry["displayName"];
            const bool named = log.find(name) != std::string::npos ||
                               log.find(" " + shown.substr(shown.rfind('_') + 1)) != std::string::npos ||
                               log.find(shown.substr(0, shown.find('_') + 1) + ":") != std::string::npos;
            EXPECT_TRUE(named) << entry << "\nis left and not named:\n" << log;
        }
    }

    Korvel::TestRegistry registry;
    json before;
    Ids targets;
};

TEST_F(ProviderTest, MakesOneRequestForEachArrayWhileWritersHoldStill) {
    const auto provider = ProviderUnderTest::Make();
    const std::string group = "/api/consistency_groups/cg-0000000";
    const std::vector<std::vector<std::string>> wanted = {
        {},
        {"0 GET /api/volumes", "0 GET /api/volumes", "0 GET /api/volumes", "1 GET /api/volumes", "1 GET /api/volumes",
         "1 GET /api/volumes"},
        {},
        {},
        {},
        {"0 GET /api/servers", "1 GET /api/servers"},
        {},
        {"0 POST /api/snapshots/snapshots_set", "1 POST /api/snapshots/snapshots_set"},
        {"0 GET /api/volumes", "0 GET /api/volumes", "0 POST " + group + "1/clone", "0 POST " + group + "2/clone",
         "1 GET /api/volumes", "1 POST " + group + "1/clone"},
        {},
        {"0 POST /api/servers/srv-00000001/volumes", "0 POST /api/servers/srv-00000001/volumes",
         "1 POST /api/servers/srv-00000001/volumes"},
    };
    const std::vector<Step> steps = Cycle(firstSet);
    ASSERT_EQ(steps.size(), wanted.size());
    simulator.ClearJournal();
    for (std::size_t at = 0; at < steps.size(); ++at) {
        EXPECT_EQ(steps[at].call(*provider), "ok") << steps[at].name;
        EXPECT_THAT(Wire(), ElementsAreArray(wanted[at])) << steps[at].name;
    }
    ASSERT_EQ(targets.size(), 3U);
    for (std::size_t at = 0; at < 3; ++at) {
        const json volumes = simulator.State(at / 2).at("volumes");
        EXPECT_TRUE(std::any_of(volumes.begin(), volumes.end(), [&](const json& volume) {
            return volume["ieeeId"] == targets[at] && volume["mappedTo"] == json({"srv-00000001"});
        })) << targets[at];
    }
    // A second set works beside the first one's volumes.
    const Ids firstTargets = targets;
    EXPECT_EQ(Run(*provider, Cycle(secondSet)), "");
    RemoveAll(*provider);
    targets = firstTargets;
    RemoveAll(*provider);
    EXPECT_EQ(provider->OnUnload(), "ok");
    EXPECT_EQ(Contents(), before);
    EXPECT_EQ(provider->Log(), "");
}

TEST_F(ProviderTest, AnAbortAfterEveryStepLeavesNothing) {
    for (std::size_t last = 2; last <= Cycle(firstSet).size(); ++last) {
        const auto provider = ProviderUnderTest::Make();
        std::vector<Step> steps = Cycle(firstSet);
        steps.resize(last);
        SCOPED_TRACE("abort after " + steps.back().name);
        EXPECT_EQ(Run(*provider, steps), "");
        EXPECT_EQ(provider->AbortSnapshots(firstSet), last == 2 ? "not found" : "ok");
        EXPECT_EQ(Contents(), before);
        EXPECT_EQ(provider->OnUnload(), "ok");
        EXPECT_EQ(last == 2 ? "" : provider->Log(), "");
    }
}

TEST_F(ProviderTest, AnUnloadInTheMiddleUndoesTheSet) {
    for (const std::size_t last : {8U, 9U, 10U}) {
        const auto provider = ProviderUnderTest::Make();
        std::vector<Step> steps = Cycle(firstSet);
        steps.resize(last);
        SCOPED_TRACE("unload after " + steps.back().name);
        EXPECT_EQ(Run(*provider, steps), "");
        EXPECT_NE(Contents(), before);
        EXPECT_EQ(provider->OnUnload(), "ok");
        EXPECT_EQ(Contents(), before);
    }
}

TEST(LunIdentity, IsTheNaaIdentifierInEitherCodeSet) {
    struct Case {
        int codeSet;
        int type;
        std::string_view bytes;
        const char* id;
    };
    const Case cases[] = {
        {1, 3, {"\x60\x01\xf3\0", 4}, "6001f300"},
        {2, 3, "6001F3A0", "6001f3a0"},
        {3, 3, "6001f3a0", "6001f3a0"},
        {2, 3, "naa.6001f3a0", ""},
        {1, 2, "\x60\x01\xf3\xa0", ""},
        {1, 3, "", ""},
    };
    for (const Case& each : cases) {
        const StorageIdentifier identifier{each.codeSet, each.type, std::string(each.bytes)};
        EXPECT_EQ(IeeeIdentifierOf({{2, 1, "a vendor's"}, identifier}), each.id) << each.bytes;
    }
    EXPECT_EQ(IeeeIdentifierOf({NaaIdentifier(Id(0, 1))}), Id(0, 1));
    EXPECT_THROW(NaaIdentifier("6001f"), std::invalid_argument);
    EXPECT_THROW(NaaIdentifier("6001x3"), std::invalid_argument);
}

TEST_F(ProviderTest, AFailureOfAnyRequestLeavesNothingThatTheLogDoesNotName) {
    simulator.ClearJournal();
    {
        const auto provider = ProviderUnderTest::Make();
        ASSERT_EQ(Run(*provider, Cycle(firstSet)), "");
        RemoveAll(*provider);
    }
    std::vector<std::size_t> requests(2);
    for (const auto& entry : simulator.Journal()) {
        ++requests.at(entry.array);
    }
    const json faults[] = {{{"kind", "status"}, {"status", 500}}, {{"kind", "drop"}, {"execute", true}}};
    for (std::size_t array = 0; array < 2; ++array) {
        for (std::size_t request = 0; request < requests[array]; ++request) {
            for (json fault : faults) {
                fault.update({{"array", array}, {"skip", request}});
                SCOPED_TRACE(fault.dump());
                simulator.Reset();
                simulator.Arm(fault);
                const auto provider = ProviderUnderTest::Make();
                targets.clear();
                if (Run(*provider, Cycle(firstSet)).empty()) {
                    RemoveAll(*provider);
                } else {
                    provider->AbortSnapshots(firstSet);
                }
                EXPECT_EQ(provider->OnUnload(), "ok");
                EXPECT_EQ(simulator.UnfiredFaults(), json::array());
                ExpectNothingUnnamed(provider->Log());
            }
        }
    }
}

#ifdef KORVEL_FAILING_NEW

TEST_F(ProviderTest, ALackOfMemoryWhileWritersHoldStillLeavesNothing) {
    bool everyOneHasFailed = false;
    for (std::size_t allocation = 1; !everyOneHasFailed; ++allocation) {
        SCOPED_TRACE(allocation);
        const auto provider = ProviderUnderTest::Make();
        std::vector<Step> steps = Cycle(firstSet);
        steps.resize(steps.size() - 4);  // the next one takes the snapshots
        ASSERT_EQ(Run(*provider, steps), "");
        allocationsLeft = allocation;
        try {
            EXPECT_EQ(provider->CommitSnapshots(firstSet), "ok");
            everyOneHasFailed = allocationsLeft != 0;
        } catch (const std::bad_alloc&) {  // what a caller is to be told
        }
        allocationsLeft = 0;
        EXPECT_EQ(provider->OnUnload(), "ok");
        EXPECT_EQ(Contents(), before);
    }
}

#endif

TEST_F(ProviderTest, AnArrayThatHangsFailsTheSetInTimeAndIsCleanedUpLate) {
    const auto provider = ProviderUnderTest::Make();
    const auto hang = provider->CommitPatience() + std::chrono::seconds(5);
    simulator.Arm({{"kind", "delay"}, {"delay", hang.count()}, {"array", 1}, {"method", "POST"}});
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(Run(*provider, Cycle(firstSet)), "CommitSnapshots: veto");
    const auto taken = std::chrono::steady_clock::now() - begin;
    EXPECT_LT(taken, hang) << "it waited for the array";
    RecordProperty("milliseconds", static_cast<int>(taken / std::chrono::milliseconds(1)));
    const std::string late = "has answered too late: its snapshots are removed";
    bool supported = false;
    EXPECT_EQ(provider->AreLunsSupported({Id(0, 1)}, supported), "ok");
    EXPECT_TRUE(supported) << "one array hangs, the other does not";
    EXPECT_THAT(provider->Log(), testing::Not(testing::HasSubstr(late)))
        << "the search waited for the array that hangs";
    while (provider->Log().find(late) == std::string::npos) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    do {  // it counts as hanging until its snapshots are gone
        EXPECT_EQ(provider->AreLunsSupported({Id(1, 1)}, supported), "ok");
    } while (!supported);
    EXPECT_EQ(Run(*provider, Cycle(secondSet)), "") << "the array answers again";
    RemoveAll(*provider);
    EXPECT_EQ(provider->OnUnload(), "ok");
    EXPECT_EQ(Contents(), before);
}

TEST_F(ProviderTest, CallsOutOfOrderAndForeignLunsAreRefused) {
    const auto provider = ProviderUnderTest::Make();
    EXPECT_EQ(provider->BeginPrepareSnapshot(firstSet, SnapshotId(0), {Id(0, 1)}), "bad state") << "not loaded";
    EXPECT_EQ(provider->OnLoad(), "ok");
    bool supported = true;
    EXPECT_EQ(provider->AreLunsSupported({Id(0, 1), "600000000000000000000000000000ff"}, supported), "ok");
    EXPECT_FALSE(supported) << "a foreign LUN beside a known one";
    EXPECT_EQ(provider->BeginPrepareSnapshot(firstSet, SnapshotId(0), {"600000000000000000000000000000ff"}),
              "not found");
    EXPECT_EQ(provider->CommitSnapshots(firstSet), "bad state");
    EXPECT_EQ(provider->AbortSnapshots(firstSet), "not found");
    EXPECT_EQ(provider->LocateLuns({Id(0, 1)}), "not found") << "no clone";
    EXPECT_EQ(provider->OnLunEmpty(Id(0, 1)), "not found") << "no clone";

    EXPECT_EQ(provider->BeginPrepareSnapshot(firstSet, SnapshotId(0), {Id(0, 1)}), "ok");
    EXPECT_EQ(provider->BeginPrepareSnapshot(firstSet, SnapshotId(1), {Id(0, 1)}), "veto") << "its group is in the set";
    EXPECT_EQ(provider->PreCommitSnapshots(firstSet), "bad state");
    EXPECT_EQ(provider->EndPrepareSnapshots(firstSet), "ok");
    EXPECT_EQ(provider->EndPrepareSnapshots(firstSet), "bad state");
    EXPECT_EQ(provider->BeginPrepareSnapshot(firstSet, SnapshotId(2), {Id(0, 2)}), "bad state");
    EXPECT_EQ(provider->PostCommitSnapshots(firstSet, 1), "bad state");
    EXPECT_EQ(provider->GetTargetLuns({Id(0, 1)}, targets), "bad state");
    EXPECT_EQ(provider->AbortSnapshots(firstSet), "ok");
    EXPECT_EQ(Contents(), before);
    EXPECT_EQ(provider->OnUnload(), "ok");
}

}  // namespace
}  // namespace VssExample
