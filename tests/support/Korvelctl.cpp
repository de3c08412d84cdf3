#include "support/Korvelctl.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <nlohmann/json.hpp>
#include <random>

#if !defined(_WIN32)
#include <sys/wait.h>

#include "support/JsonSchema.h"
#endif

namespace Korvel::Testing {
namespace {

/// One object as the schema wants it, the exit status in it, and on stderr the text of every problem.
void CheckObject(const Result& result) {
    const auto object = nlohmann::json::parse(result.out, nullptr, false);
    ASSERT_FALSE(object.is_discarded()) << result.out;
#if !defined(_WIN32)
    EXPECT_EQ(SchemaFaults(object, std::getenv("KORVELCTL_SCHEMA")), "") << result.out;
#endif
    EXPECT_EQ(object.at("status"), result.status);
    EXPECT_EQ(object.at("problems").empty(), result.err.empty()) << result.err;
    EXPECT_TRUE(std::all_of(result.out.begin(), result.out.end(), [](unsigned char byte) { return byte < 0x7f; }));
}

}  // namespace

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
    WriteFile(OwnFile("run.in"), input);
    return Execute(arguments, "run");
}

std::vector<Result> KorvelctlTest::RunAtOnce(const std::vector<std::string>& arguments) {
    simulator.ClearJournal();
    const auto nameOf = [](std::size_t number) { return "run" + std::to_string(number); };
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        // Before any of them starts: on Windows a program inherits a file that another thread has open.
        WriteFile(OwnFile(nameOf(i) + ".in"), "");
    }
    std::vector<std::future<Result>> runs;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        runs.push_back(std::async(std::launch::async, [&, i] { return Execute(arguments[i], nameOf(i)); }));
    }
    std::vector<Result> results;
    std::transform(runs.begin(), runs.end(), std::back_inserter(results), [](auto& run) { return run.get(); });
    return results;
}

Result KorvelctlTest::Execute(const std::string& arguments, const std::string& name) {
    const std::string file = OwnFile(name);
    const std::string line =
        KorvelctlCommand() + " " + Filled(arguments) + " <" + file + ".in >" + file + ".out 2>" + file + ".err";
    // NOLINTBEGIN(cert-env33-c): the shell redirects on both systems
#if defined(_WIN32)
    const int status = std::system(('"' + line + '"').c_str());  // its shell takes the outermost quotes away
#else
    int status = std::system(line.c_str());
    status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
    // NOLINTEND(cert-env33-c)
    Result result{status, ReadFile(file + ".out"), ReadFile(file + ".err")};
    if (arguments.find("--json") != std::string::npos) {
        CheckObject(result);
    }
    return result;
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
    return program == nullptr ? "korvelctl" : '"' + std::string(program) + '"';
}

}  // namespace Korvel::Testing
