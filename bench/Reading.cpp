// Reads one listing in one way, for who counts instructions or memory around it.
//
//   korvel-reading library|bare|stream VOLUMES
//
// Prints how many KiB the process's memory has grown at its peak.

#include <malloc.h>
#include <valgrind/callgrind.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <list>
#include <map>
#include <stdexcept>
#include <string>

#include "Bare.h"
#include "rest/KConnection.h"

namespace {

/// @return a figure of the process's memory in KiB
long Memory(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string field; status >> field;) {
        if (field == name) {
            long value = 0;
            status >> value;
            return value;
        }
    }
    throw std::runtime_error("the system does not tell " + name);
}

/// Gives back what is free, and lets the peak begin anew.
void ForgetPeak() {
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << 5;
}

std::size_t ReadByLibrary(const std::string& reply) {
    static Korvel::KConnection reader("array", "key");
    std::list<Korvel::KVolumeRecord> records;
    reader.ParseVolumeList(reply, &records);
    return records.size();
}

const std::map<std::string, std::function<std::size_t(const std::string&)>> ways = {
    {"library", ReadByLibrary},
    {"bare", [](const std::string& reply) { return Bench::ReadAsTree(reply).size(); }},
    {"stream", [](const std::string& reply) { return Bench::ReadAsStream(reply).size(); }},
};

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 3 || !ways.contains(argv[1])) {
        throw std::invalid_argument("usage: korvel-reading library|bare|stream VOLUMES");
    }
    const auto& way = ways.at(argv[1]);
    const long volumes = std::stol(argv[2]);
    way(Bench::Listing(1));  // what is only done once is no part of the reading
    const std::string reply = Bench::Listing(volumes);
    ForgetPeak();
    const long before = Memory("VmRSS:");
    CALLGRIND_TOGGLE_COLLECT;
    const std::size_t read = way(reply);
    CALLGRIND_TOGGLE_COLLECT;
    std::cout << Memory("VmHWM:") - before << '\n';
    return read == static_cast<std::size_t>(volumes) ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 2;
}
