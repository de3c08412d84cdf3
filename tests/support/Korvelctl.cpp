#include "support/Korvelctl.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#if !defined(_WIN32)
#include <sys/wait.h>
#endif

namespace Korvel::Testing {

KorvelctlTest::KorvelctlTest() {
    folder = testing::TempDir() + "korvelctl-" + std::to_string(std::random_device{}()) + "/";
    std::filesystem::create_directory(folder);
    for (std::size_t i = 0; i < simulator.Arrays(); ++i) {
        registry.SetText(simulator.Address(i), "AccessKey", simulator.Key(i));
    }
}

KorvelctlTest::~KorvelctlTest() {
    std::filesystem::remove_all(folder);
}

std::string KorvelctlTest::Filled(std::string arguments) const {
    for (std::size_t i = 0; i < 2; ++i) {
        const std::string mark = i == 0 ? "{A}" : "{B}";
        for (auto at = arguments.find(mark); at != std::string::npos; at = arguments.find(mark)) {
            arguments.replace(at, mark.size(), simulator.Address(i));
        }
    }
    return arguments;
}

Result KorvelctlTest::Run(const std::string& arguments, const std::string& input) {
    simulator.ClearJournal();
    WriteFile(OwnFile("in"), input);
    const std::string line = KorvelctlCommand() + " " + Filled(arguments) + " <" + OwnFile("in") + " >" +
                             OwnFile("out") + " 2>" + OwnFile("err");
    int status = std::system(line.c_str());  // NOLINT(cert-env33-c): the shell redirects on both systems
#if !defined(_WIN32)
    status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
    return {status, ReadFile(OwnFile("out")), ReadFile(OwnFile("err"))};
}

std::string KorvelctlTest::Requests() {
    std::string requests;
    for (const auto& entry : simulator.Journal()) {
        requests += entry.method + " " + entry.target + "\n";
    }
    return requests;
}

std::string KorvelctlTest::Changes() {
    std::string changes;
    for (const auto& entry : simulator.Journal()) {
        changes += entry.method == "GET" ? "" : entry.method + " " + entry.target + "\n";
    }
    return changes;
}

void KorvelctlTest::TakeSnapshots() {
    ASSERT_EQ(Run("snapshot create sql-data-1-0001 sql-data-2-0001").status, 0);
    ASSERT_EQ(simulator.State(0)["snapshots"]["cg-00000001"][0]["name"], snapshot);
}

void KorvelctlTest::WriteFile(const std::string& path, const std::string& bytes) const {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string KorvelctlTest::ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    std::erase(text, '\r');
    return text;
}

std::string KorvelctlCommand() {
    const char* program = std::getenv("KORVELCTL_COMMAND");
    return program == nullptr ? "korvelctl" : program;
}

}  // namespace Korvel::Testing
