// korvelctl as its users see it: a command line in, tables, messages, exit statuses and requests out.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <utility>

#include "support/Simulator.h"
#include "support/TestRegistry.h"

#if !defined(_WIN32)
#include <sys/wait.h>
#endif

namespace Korvel {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

struct Result {
    int status;
    std::string out;
    std::string err;
};

std::string FileText(const std::string& name) {
    std::ifstream file(name);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    std::erase(text, '\r');
    return text;
}

/// Runs the program that KORVELCTL_COMMAND names, which may have words before it, through the system's own shell.
Result RunKorvelctl(const std::string& arguments, const std::string& input) {
    static const std::string base = testing::TempDir() + "korvelctl-" + std::to_string(std::random_device{}()) + "-";
    const char* program = std::getenv("KORVELCTL_COMMAND");
    std::ofstream(base + "in", std::ios::binary) << input;
    const std::string line = std::string(program == nullptr ? "korvelctl" : program).append(" ").append(arguments) +
                             " <" + base + "in >" + base + "out 2>" + base + "err";
    int status = std::system(line.c_str());  // NOLINT(cert-env33-c): the shell redirects on both systems
#if !defined(_WIN32)
    status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
    Result result{status, FileText(base + "out"), FileText(base + "err")};
    for (const char* stream : {"in", "out", "err"}) {
        std::filesystem::remove(base + stream);
    }
    return result;
}

class KorvelctlTest : public testing::Test {
protected:
    KorvelctlTest() {
        simulator.Reset();
        for (std::size_t i = 0; i < simulator.Arrays(); ++i) {
            registry.SetText(simulator.Address(i), "AccessKey", simulator.Key(i));
        }
    }

    /// Runs a command in which A and B between braces stand for the arrays' addresses.
    Result Run(std::string arguments, const std::string& input = "") {
        for (std::size_t i = 0; i < 2; ++i) {
            const std::string mark = i == 0 ? "{A}" : "{B}";
            for (auto at = arguments.find(mark); at != std::string::npos; at = arguments.find(mark)) {
                arguments.replace(at, mark.size(), simulator.Address(i));
            }
        }
        simulator.ClearJournal();
        return RunKorvelctl(arguments, input);
    }

    /// The requests of the last command that change something: method and path, one line each.
    std::string Changes() {
        std::string changes;
        for (const auto& entry : simulator.Journal()) {
            changes += entry.method == "GET" ? "" : entry.method + " " + entry.target + "\n";
        }
        return changes;
    }

    /// Takes a snapshot of the first volume of either array; both arrays give it the same name.
    void TakeSnapshots() {
        ASSERT_EQ(Run("snapshot create sql-data-1-0001 sql-data-2-0001").status, 0);
        ASSERT_EQ(simulator.State(0)["snapshots"]["cg-00000001"][0]["name"], snapshot);
    }

    const std::string snapshot = "snap-00000005";
    Testing::Simulator& simulator = Testing::Simulator::Instance();
    TestRegistry registry;
};

struct Case {
    std::string arguments;
    int status;
    std::string shown;    // part of stdout, or of stderr when the status is not 0
    std::string changes;  // the requests that change something
    std::string input = {};
};

const std::string IQN = "iqn.2011-03.example.korvel:host-0001";
const std::string Long(300, 'x');

TEST_F(KorvelctlTest, EveryOutcomeHasItsStatusItsTextAndItsRequests) {
    const std::string key = simulator.Key();
    const Case cases[] = {
        {"--version", 0, "korvelctl 1.", ""},
        {"volume rollback --help", 0, "Example:\n  korvelctl volume rollback", ""},
        {"", 64, "required", ""},
        {"volume find", 64, "--snapshot", ""},
        {"volume find --name a --id b", 64, "Exactly 1", ""},
        {"volume find --name \"\"", 64, "is empty", ""},
        {"array list", 0, simulator.Address(0), ""},
        {"array list", 0, simulator.Address(1), ""},
        {"array validate {B}", 0, "accepted", ""},
        {"array validate {A} --key-stdin", 0, "accepted", "", key + "\r\n"},
        {"array validate {A} --key-stdin", 1, "access key", "", "wrong"},
        {"array validate {A} --key-stdin", 64, "is empty", "", "\n"},
        {"array validate {A} --key-stdin", 64, "at most 241", "", std::string(242, 'k')},
        {"array validate {A} --key-file no-such-file", 1, "cannot be read", ""},
        {"array validate 127.0.0.1:1", 2, "configured", ""},
        {"array validate \"user@{A}\"", 64, "'@'", ""},
        {"array validate " + Long, 64, "at most 232", ""},
        {"volume find --name mail-2-0003", 0, simulator.Address(1) + "  mail-2-0003   vol-00000003", ""},
        {"volume find --id 6001f3a0000200000000000000000001", 0, "sql-data-2-0001", ""},
        {"volume find --name nobody", 2, "no such volume", ""},
        {"volume find --name mail-2-0003 --array {A}", 2, "no such volume", ""},
        {"volume find --name mail-2-0003 --array 127.0.0.9", 2, "127.0.0.9", ""},
        {"volume find --name mail-1-0003 --array {A} --key-stdin", 0, "vol-00000003", "", key},
        {"volume find --name mail-1-0003 --key-stdin", 64, "--array", "", key},
        {"snapshot create mail-1-0003 nobody", 2, "nobody", ""},
        {"snapshot create mail-1-0003 mail-1-0003", 64, "twice", ""},
        {"server find " + IQN, 64, "--array", ""},
        {"server find " + IQN + " --array {B}", 0, "srv-00000001", ""},
        {"server find iqn.new --array {B}", 0, "srv-0000000", "POST /api/servers\n"},
        {"server find \"iqn&ipsec=yes\" --array {B}", 64, "'&'", ""},
        {"volume attach mail-1-0003 --iqn " + IQN, 0, "srv-00000001", "POST /api/servers/srv-00000001/volumes\n"},
        {"volume delete mail-1-0003 --yes", 1, "is mapped to server", "DELETE /api/volumes/vol-00000003\n"},
        {"volume detach mail-1-0003 --server srv-00000001", 0, "no longer", "POST /api/volumes/vol-00000003/detach\n"},
        {"volume attach mail-1-0003 --server a/b", 64, "'/'", ""},
        {"volume attach mail-1-0003 --server ..", 64, "path", ""},
        {"volume attach mail-1-0003 --server " + Long, 64, "300 characters", ""},
        {"volume attach mail-1-0003 --server nobody", 1, "Server nobody does not exist",
         "POST /api/servers/nobody/volumes\n"},
        {"volume delete mail-1-0003", 64, "--yes", ""},
        {"volume delete find --yes", 2, "'find'", ""},
        {"volume delete mail-1-0003 --yes", 0, "Deleted volume 'mail-1-0003'", "DELETE /api/volumes/vol-00000003\n"},
        {"volume clone --snapshot \"a&b\"", 64, "'&'", ""},
        {"volume clone --snapshot \"a\tb\"", 64, "control character", ""},
        {"snapshot delete \"a?b\" --yes", 64, "'?'", ""},
        {"snapshot delete " + Long + " --yes", 64, "at most 232", ""},
    };
    for (const Case& tested : cases) {
        SCOPED_TRACE(tested.arguments);
        const Result result = Run(tested.arguments, tested.input);
        EXPECT_EQ(result.status, tested.status) << result.out << result.err;
        EXPECT_THAT(tested.status == 0 ? result.out : result.err, HasSubstr(tested.shown));
        EXPECT_EQ(Changes(), tested.changes);
    }
}

TEST_F(KorvelctlTest, AChangeIsMadeOnlyWhenItIsCertainOnWhichArray) {
    TakeSnapshots();
    for (const std::string command :
         {"volume clone --snapshot ", "volume rollback --yes --snapshot ", "snapshot delete --yes "}) {
        const Result ambiguous = Run(command + snapshot);
        EXPECT_EQ(ambiguous.status, 64) << command;
        EXPECT_THAT(ambiguous.err, AllOf(HasSubstr(simulator.Address(0)), HasSubstr(simulator.Address(1))));
        EXPECT_EQ(Changes(), "");
    }
    EXPECT_EQ(Run("volume rollback --array {B} --yes --snapshot " + snapshot).status, 0);
    EXPECT_EQ(simulator.State(1)["volumes"][0]["rolledBackTo"], snapshot);
    EXPECT_EQ(simulator.State(0)["volumes"][0]["rolledBackTo"], "");
    EXPECT_EQ(Run("snapshot delete --array {A} --yes " + snapshot).status, 0);
    EXPECT_THAT(Run("volume clone --snapshot " + snapshot).out, HasSubstr(snapshot + "_"));

    simulator.Arm({{"kind", "status"}, {"status", 500}, {"array", 1}, {"count", 3}});
    const Result found = Run("volume find --name mail-1-0003");
    EXPECT_EQ(found.status, 0);
    EXPECT_THAT(found.err, HasSubstr(simulator.Address(1) + ": HTTP return code: 500. List volume failed"));
    EXPECT_EQ(Run("volume find --name nobody").status, 1);
    EXPECT_EQ(Run("volume delete mail-1-0003 --yes").status, 1);
    EXPECT_EQ(Changes(), "");
}

TEST_F(KorvelctlTest, WhatAnArrayDidIsShownAlsoWhenAnotherFails) {
    const std::string create = "snapshot create sql-data-1-0001 mail-1-0003 mail-2-0003 --json";
    const auto set = [this](const std::string& body) {
        simulator.Arm({{"kind", "body"}, {"body", body}, {"array", 1}, {"path", "/api/snapshots/snapshots_set"}});
    };
    const auto snapshots = [](const Result& result) {
        std::string line;
        for (const auto& row : nlohmann::json::parse(result.out)) {
            line += row["displayName"].get<std::string>() + "=" + row["snapshot"].get<std::string>() + " ";
        }
        return line;
    };
    set("<html/>");
    const Result silent = Run(create);
    EXPECT_EQ(silent.status, 1);
    EXPECT_EQ(snapshots(silent), "sql-data-1-0001=snap-00000005 mail-1-0003=snap-00000006 ");
    EXPECT_THAT(silent.err, HasSubstr("holds no answer"));

    simulator.Reset();
    set("<create-snapshot-set-response><status>0</status><status-msg/><snapshots><snapshot>s1</snapshot>"
        "<snapshot>s2</snapshot></snapshots></create-snapshot-set-response>");
    const Result surplus = Run(create);
    EXPECT_EQ(surplus.status, 1);
    EXPECT_THAT(snapshots(surplus), HasSubstr("?=s1 ?=s2 "));
    EXPECT_THAT(surplus.err, HasSubstr("asked for 1 snapshots and names 2"));
}

TEST_F(KorvelctlTest, TextsOfAnArrayReachNeitherTerminalNorJsonRaw) {
    auto state = simulator.State(0);
    state["volumes"][0]["displayName"] = "a\x7f\xc3\xa4";
    simulator.SetState(0, state);
    const std::string id = "volume find --id 6001f3a0000100000000000000000001";
    EXPECT_THAT(Run(id).out, HasSubstr("a\\x7f\xc3\xa4"));
    EXPECT_EQ(nlohmann::json::parse(Run(id + " --json").out)[0]["displayName"], "a\x7f\xc3\xa4");
}

TEST_F(KorvelctlTest, TheLogGoesWhereItIsTold) {
    const std::string log = testing::TempDir() + "korvelctl-log-" + std::to_string(std::random_device{}());
    EXPECT_THAT(Run("volume find --name nobody").err, StartsWith("korvelctl: "));
    EXPECT_THAT(Run("volume find --name nobody --log-level 2").err,
                HasSubstr("No volume matching display name nobody"));
    EXPECT_THAT(Run("volume find --name nobody --log-level 2 --log " + log).err, StartsWith("korvelctl: "));
    EXPECT_THAT(FileText(log), HasSubstr("No volume matching display name nobody"));
    std::filesystem::remove(log);
}

TEST_F(KorvelctlTest, TheConfigurationCheckNamesEveryFault) {
    // An address that every registry lists last: the library stops at the first entry it cannot use.
    const auto key = [this](const std::string& text) { registry.SetText("99.0.0.9", "AccessKey", text); };
    const auto check = [this](int status, const std::string& shown) {
        const Result result = Run("config check");
        EXPECT_EQ(result.status, status) << result.out << result.err;
        EXPECT_THAT(status == 0 ? result.out : result.err, HasSubstr(shown));
    };
    const auto listing = [this](int status, bool partly) {  // the library must not end the process
        const Result result = Run("array list");
        EXPECT_EQ(result.status, status) << result.err;
        EXPECT_EQ(result.out.find(simulator.Address()) != std::string::npos, partly) << result.out;
    };
    check(0, simulator.Address(1) + "  in order");
    registry.AddArray("99.0.0.9");
    check(1, "99.0.0.9: the AccessKey value is missing");
    listing(1, true);
    key("");
    check(1, "99.0.0.9: the access key is empty");
    key(std::string(242, 'k'));
    check(1, "at most 241");
    listing(1, false);
    registry.SetBytes("99.0.0.9", "AccessKey", 3, std::vector<unsigned char>(257, 'k'));
    check(1, "larger than 256 bytes");
    listing(1, true);
    registry.Remove("99.0.0.9");
    registry.SetText(std::string(233, 'a'), "AccessKey", "key");
    check(1, "at most 232");
    listing(1, false);
    registry.Clear();
    check(1, "HwProvider");
    registry.AddRoot();
    check(0, "names no array");
    EXPECT_EQ(Run("volume find --name a").status, 1);
}

#if !defined(_WIN32)
TEST_F(KorvelctlTest, TheConfigurationCheckNamesFileLineAndFault) {
    const char* configured = std::getenv("KORVEL_REGISTRY");
    ASSERT_NE(configured, nullptr);
    const std::string file = configured;
    std::ofstream(file, std::ios::app) << "\"AccessKey\"=\"unfinished\n";
    const std::string text = FileText(file);
    const auto line = std::to_string(std::count(text.begin(), text.end(), '\n'));
    EXPECT_THAT(Run("config check").err, HasSubstr(std::string(file).append(":").append(line).append(": ")));
}
#else
TEST_F(KorvelctlTest, TheConfigurationCheckNamesFileLineAndFault) {
    GTEST_SKIP() << "there is no registry file on Windows";
}
#endif

}  // namespace
}  // namespace Korvel
