#include <thread>

#include "support/ArrayTest.h"

namespace Korvel {
namespace {

/// One thread's work on an array of its own: lookups, a snapshot set and its deletion.
void WorkOn(std::size_t number) {
    Testing::Simulator& simulator = Testing::Simulator::Instance();
    KArray array(simulator.Address(number), simulator.Key(number));
    for (int round = 0; round < 5; ++round) {
        KVolume* volume = nullptr;
        const std::string wanted = number == 0 ? "sql-data-1-0001" : "sql-data-2-0001";
        ASSERT_EQ(array.GetVolumeByDispNameFromArray(wanted, volume), 0);
        std::string name;
        std::string group;
        volume->GetVolumeName(name);
        volume->GetCgID(group);
        std::list<std::string> taken;
        ASSERT_EQ(KVolume::CreateSnapshotSet(&array, {&name}, {&group}, &taken), 0);
        ASSERT_EQ(volume->DeleteSnapshot(taken.front()), 0);
    }
}

TEST(ThreadTest, EachWorksOnItsOwnArray) {
    Testing::Simulator::Instance().Reset();
    std::thread first(WorkOn, 0U);
    std::thread second(WorkOn, 1U);
    first.join();
    second.join();
}

}  // namespace
}  // namespace Korvel
