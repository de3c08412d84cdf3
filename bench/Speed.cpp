// What the library costs beside the same work written straight on libcurl and libxml2. Those that make requests want an
// array: KORVEL_BENCH_ADDRESS and KORVEL_BENCH_KEY.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <list>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Bare.h"
#include "foundation/KLog.h"
#include "model/KSnapshot.h"
#include "model/KorvelAccessLibrary.h"
#include "rest/KConnection.h"

namespace Bench {
namespace {

void Require(bool holds, const char* what) {
    if (!holds) {
        throw std::runtime_error(what);
    }
}

std::string Setting(const char* name) {
    const char* value = std::getenv(name);
    Require(value != nullptr, "no array to ask");
    return value;
}

void ReadLibrary(benchmark::State& state) {
    const std::string reply = Listing(state.range(0));
    Korvel::KConnection reader("array", "key");
    for ([[maybe_unused]] auto each : state) {
        std::list<Korvel::KVolumeRecord> records;
        reader.ParseVolumeList(reply, &records);
        benchmark::DoNotOptimize(records);
    }
}

template <auto Read>
void ReadBare(benchmark::State& state) {
    const std::string reply = Listing(state.range(0));
    for ([[maybe_unused]] auto each : state) {
        benchmark::DoNotOptimize(Read(reply));
    }
}

BENCHMARK(ReadLibrary)->RangeMultiplier(10)->Range(1, 100000);
BENCHMARK(ReadBare<ReadAsTree>)->Name("ReadTree")->RangeMultiplier(10)->Range(1, 100000);
BENCHMARK(ReadBare<ReadAsStream>)->Name("ReadStream")->RangeMultiplier(10)->Range(1, 100000);

constexpr long known = 1000;

std::string NameOf(long number) {
    return "sql-data-1-" + std::to_string(100000 + number);
}

/// An array that knows volumes, each with a snapshot.
Korvel::KArray& KnownArray() {
    static Korvel::KArray array("array", "key");
    static const bool filled = [] {
        for (long i = 1; i <= known; ++i) {
            auto volume =
                std::make_unique<Korvel::KVolume>("id-" + NameOf(i), "vol-" + NameOf(i), NameOf(i), "cg-" + NameOf(i));
            volume->AddCreatedSnapshot("snap-" + NameOf(i));
            array.AddVolumeToList(volume.release());
        }
        return true;
    }();
    benchmark::DoNotOptimize(filled);
    return array;
}

constexpr char ofNames[] = "";
constexpr char ofIds[] = "id-";
constexpr char ofSnapshots[] = "snap-";

template <auto LookUp, const char* Prefix>
void FindLibrary(benchmark::State& state) {
    Korvel::KArray& array = KnownArray();
    const std::string wanted = Prefix + NameOf(known);
    for ([[maybe_unused]] auto each : state) {
        Korvel::KVolume* found = nullptr;
        Require((array.*LookUp)(wanted, found) == 0, "the last volume is not found");
        benchmark::DoNotOptimize(found);
    }
}

/// What the library holds of a volume, without the library.
struct Known {
    explicit Known(const std::string& ofName)
        : id(std::make_unique<std::string>("id-" + ofName)),
          name(std::make_unique<std::string>("vol-" + ofName)),
          displayName(std::make_unique<std::string>(ofName)),
          group(std::make_unique<std::string>("cg-" + ofName)),
          latest(std::make_unique<std::string>("snap-" + ofName)) {
        snapshots.push_back(std::make_unique<std::unique_ptr<std::string>>(std::make_unique<std::string>(*latest)));
    }

    std::unique_ptr<std::string> id;
    std::unique_ptr<std::string> name;
    std::unique_ptr<std::string> displayName;
    std::unique_ptr<std::string> group;
    std::unique_ptr<std::string> latest;
    std::list<std::unique_ptr<std::unique_ptr<std::string>>> snapshots;
};

bool IsNamed(const Known& volume, const std::string& wanted) {
    return *volume.displayName == wanted;
}

bool HasId(const Known& volume, const std::string& wanted) {
    return *volume.id == wanted;
}

bool HasSnapshot(const Known& volume, const std::string& wanted) {
    for (const auto& snapshot : volume.snapshots) {
        if (**snapshot == wanted) {
            return true;
        }
    }
    return false;
}

template <auto Matches, const char* Prefix>
void Walk(benchmark::State& state) {
    std::list<std::unique_ptr<Known>> volumes;
    for (long i = 1; i <= known; ++i) {
        volumes.push_back(std::make_unique<Known>(NameOf(i)));
    }
    const std::string wanted = Prefix + NameOf(known);
    for ([[maybe_unused]] auto each : state) {
        const Known* found = nullptr;
        for (const auto& volume : volumes) {
            if (volume != nullptr && Matches(*volume, wanted)) {
                found = volume.get();
                break;
            }
        }
        benchmark::DoNotOptimize(found);
    }
}

BENCHMARK(Walk<IsNamed, ofNames>)->Name("WalkByName");
BENCHMARK(Walk<HasId, ofIds>)->Name("WalkById");
BENCHMARK(Walk<HasSnapshot, ofSnapshots>)->Name("WalkBySnapshot");
BENCHMARK(FindLibrary<&Korvel::KArray::GetVolumeByDispName, ofNames>)->Name("FindByName");
BENCHMARK(FindLibrary<&Korvel::KArray::GetVolumeByID, ofIds>)->Name("FindById");
BENCHMARK(FindLibrary<&Korvel::KArray::GetVolumeBySnapID, ofSnapshots>)->Name("FindBySnapshot");

void LogRecord(benchmark::State& state) {
    const std::string text = "a text of an ordinary length";
    for ([[maybe_unused]] auto each : state) {
        Korvel::LogTrace("Entering a function with %s and %d", text, 1);
    }
}

BENCHMARK(LogRecord);

void ListLibrary(benchmark::State& state) {
    Korvel::KConnection connection(Setting("KORVEL_BENCH_ADDRESS"), Setting("KORVEL_BENCH_KEY"));
    for ([[maybe_unused]] auto each : state) {
        std::list<Korvel::KVolumeRecord> records;
        Require(connection.GetVolumesList(&records) == 0, "no listing");
    }
}

void ListBare(benchmark::State& state) {
    const std::string url = "https://" + Setting("KORVEL_BENCH_ADDRESS") + "/api/volumes";
    const std::string key = Setting("KORVEL_BENCH_KEY");
    for ([[maybe_unused]] auto each : state) {
        benchmark::DoNotOptimize(ReadAsTree(Request(NewHandle(), url, key)));
    }
}

/// What a connection that is kept would save.
void ListKept(benchmark::State& state) {
    const std::string url = "https://" + Setting("KORVEL_BENCH_ADDRESS") + "/api/volumes";
    const std::string key = Setting("KORVEL_BENCH_KEY");
    const Handle handle = NewHandle();
    for ([[maybe_unused]] auto each : state) {
        benchmark::DoNotOptimize(ReadAsTree(Request(handle, url, key)));
    }
}

BENCHMARK(ListKept)->UseRealTime();
BENCHMARK(ListLibrary)->UseRealTime();
BENCHMARK(ListBare)->UseRealTime();

void SearchLibrary(benchmark::State& state) {
    for ([[maybe_unused]] auto each : state) {
        Korvel::KArray array(Setting("KORVEL_BENCH_ADDRESS"), Setting("KORVEL_BENCH_KEY"));
        Korvel::KVolume* found = nullptr;
        array.GetVolumeBySnapIDFromArray("no such snapshot", found);
        Require(found == nullptr, "a snapshot that does not exist");
    }
}

void SearchBare(benchmark::State& state) {
    const std::string root = "https://" + Setting("KORVEL_BENCH_ADDRESS") + "/api/";
    const std::string key = Setting("KORVEL_BENCH_KEY");
    for ([[maybe_unused]] auto each : state) {
        for (const Volume& volume : ReadAsTree(Request(NewHandle(), root + "volumes", key))) {
            benchmark::DoNotOptimize(
                ReadSnapshots(Request(NewHandle(), root + "consistency_groups/" + volume.group + "/snapshots", key)));
        }
    }
}

BENCHMARK(SearchLibrary)->UseRealTime()->Iterations(1);
BENCHMARK(SearchBare)->UseRealTime()->Iterations(1);

/// From the search for a volume to the end of its snapshot and its clone.
void CycleLibrary(benchmark::State& state) {
    for ([[maybe_unused]] auto each : state) {
        Korvel::KArray array(Setting("KORVEL_BENCH_ADDRESS"), Setting("KORVEL_BENCH_KEY"));
        Korvel::KVolume* volume = nullptr;
        Korvel::KVolume* clone = nullptr;
        Require(array.GetVolumeByDispNameFromArray("sql-data-1-0001", volume) == 0, "no volume");
        std::string name;
        std::string group;
        std::string cloneName;
        std::string server;
        volume->GetVolumeName(name);
        volume->GetCgID(group);
        std::list<std::string> taken;
        Require(Korvel::KVolume::CreateSnapshotSet(&array, {&name}, {&group}, &taken) == 0, "no snapshot");
        Require(array.CloneVolume(group, taken.front(), clone) == 0, "no clone");
        clone->GetVolumeName(cloneName);
        Require(array.GetServerIDByIQNFromArray("iqn.2011-03.example.korvel:host-0001", server) == 0, "no server");
        Require(array.AttachVolume(cloneName, server) == 0, "no mapping");
        Require(array.DetachVolume(cloneName, server) == 0, "a mapping");
        Require(array.DeleteVolume(cloneName) == 0, "a clone");
        Require(volume->DeleteSnapshot(taken.front()) == 0, "a snapshot");
    }
}

BENCHMARK(CycleLibrary)->UseRealTime();

}  // namespace
}  // namespace Bench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    Korvel::KAccessLayer::GlobalInit();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
