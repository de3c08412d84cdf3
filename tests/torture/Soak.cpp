// Many threads with an access layer each, for long: nothing may race, and nothing may grow.

#include <malloc.h>

#include <barrier>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <thread>

#include "model/KorvelAccessLibrary.h"
#include "support/OpenDescriptors.h"
#include "support/RecordingLogger.h"
#include "support/Simulator.h"
#include "support/TestRegistry.h"
#include "torture/Calls.h"

namespace Korvel::Torture {
namespace {

constexpr std::size_t heapSlack = 4096;
#ifdef _WIN32
constexpr std::size_t threadCount = 1;  // Wine's TLS keeps its handles in a table without a lock
#else
constexpr std::size_t threadCount = 16;
#endif

/// What the process holds.
struct Holdings {
    std::size_t heap = 0;
    unsigned long descriptors = 0;
};

std::size_t HeapInUse() {
#ifdef _WIN32
    std::size_t used = 0;
    for (_HEAPINFO entry{}; _heapwalk(&entry) == _HEAPOK;) {
        used += entry._useflag == _USEDENTRY ? entry._size : 0;
    }
    return used;
#else
    return mallinfo2().uordblks;
#endif
}

void Require(bool condition, const char* what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

/// What a provider does with one volume: from its discovery to the end of a snapshot, asking memory first.
void Cycle(KArray& array) {
    KVolume* volume = nullptr;
    KVolume* clone = nullptr;
    std::string server;
    const std::string host = "iqn.2011-03.example.korvel:host-0001";
    Require(array.GetVolumeByDispName("sql-data-1-0001", volume) == 0 ||
                array.GetVolumeByDispNameFromArray("sql-data-1-0001", volume) == 0,
            "no volume");
    Require(array.GetServerIDByIQN(host, server) == 0 || array.GetServerIDByIQNFromArray(host, server) == 0,
            "no server");
    std::string name;
    std::string group;
    std::list<std::string> taken;
    volume->GetVolumeName(name);
    volume->GetCgID(group);
    Require(KVolume::CreateSnapshotSet(&array, {&name}, {&group}, &taken) == 0 && taken.size() == 1, "no snapshot");
    volume->AddCreatedSnapshot(taken.front());
    Require(array.CloneVolume(group, taken.front(), clone) == 0, "no clone");
    std::string cloneName;
    clone->GetVolumeName(cloneName);
    Require(array.AttachVolume(cloneName, server) == 0 && array.DetachVolume(cloneName, server) == 0 &&
                array.DeleteVolume(cloneName) == 0,
            "the clone cannot be used");
    Require(array.ResyncVolume(taken.front(), volume) == 0, "no rollback");
    Require(volume->DeleteSnapshot(taken.front()) == 0 && volume->IsSnapAvailable(taken.front()) == 2,
            "the snapshot stays");
    TakeRecords();
}

int Soak(std::size_t cycles) {
    Testing::Simulator simulator = Testing::Simulator::Instance();
    const nlohmann::json state = simulator.State();
    TestRegistry registry;
    for (std::size_t i = 0; i < threadCount; ++i) {
        simulator.SetState(i, state);
        registry.SetText(simulator.Address(i), "AccessKey", simulator.Key(i));
    }
    std::vector<Holdings> held;
    held.reserve(2);
    std::barrier meeting(threadCount, [&]() noexcept {
        TakeRecords();
        held.push_back({HeapInUse(), Testing::OpenDescriptors()});
    });
    const auto work = [&](std::size_t number) {
        try {
            KAccessLayer layer;
            std::list<KArray*> arrays;
            Require(layer.DiscoverArrays() == 0 && layer.GetArrays(arrays) == 0 && arrays.size() == threadCount,
                    "not all arrays are found");
            KArray& own = **std::next(arrays.begin(), static_cast<std::ptrdiff_t>(number));
            for (std::size_t cycle = 0; cycle < cycles / threadCount; ++cycle) {
                if (cycle == cycles / threadCount / 4) {
                    meeting.arrive_and_wait();
                }
                Cycle(own);
            }
            meeting.arrive_and_wait();
        } catch (const KException& error) {
            std::cerr << error.ErrorText() << std::endl;
            std::_Exit(1);  // the others would wait for this one
        } catch (const std::exception& error) {
            std::cerr << error.what() << std::endl;
            std::_Exit(1);
        }
    };
    const auto begin = std::chrono::steady_clock::now();
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < threadCount; ++i) {
        threads.emplace_back(work, i);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const auto [quarter, end] = std::pair(held.at(0), held.at(1));
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    std::ofstream file = Figures("soak");
    for (std::ostream* out : {static_cast<std::ostream*>(&std::cout), static_cast<std::ostream*>(&file)}) {
        *out << "| " << cycles / threadCount * threadCount << " | " << static_cast<int>(took.count()) << " s | "
             << quarter.heap << " to " << end.heap << " | " << quarter.descriptors << " to " << end.descriptors
             << " |\n";
    }
    return end.heap <= quarter.heap + heapSlack && end.descriptors <= quarter.descriptors ? 0 : 1;
}

}  // namespace
}  // namespace Korvel::Torture

int main() try {
    Korvel::KAccessLayer::GlobalInit();
    const int status = Korvel::Torture::Soak(Korvel::Torture::Whole() ? 10000 : 160);
    Korvel::KAccessLayer::GlobalCleanup();
    return status;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
