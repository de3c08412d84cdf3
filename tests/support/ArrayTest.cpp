#include "support/ArrayTest.h"

#include <regex>

#include "support/RecordingLogger.h"

namespace Korvel {

namespace {

/// Prepares libcurl for the library and for the tests' own requests.
class GlobalState : public testing::Environment {
public:
    void SetUp() override { KAccessLayer::GlobalInit(); }
    void TearDown() override { KAccessLayer::GlobalCleanup(); }
};

const auto* const globalState = testing::AddGlobalTestEnvironment(new GlobalState);

nlohmann::json Inventory() {
    const auto volume = [](const std::string& number) {
        return nlohmann::json{{"name", "vol" + number},    {"displayName", "Disk " + number},
                              {"ieeeId", "ieee" + number}, {"productId", "prod" + number + "-x"},
                              {"group", "cg" + number},    {"mappedTo", nlohmann::json::array()},
                              {"rolledBackTo", ""}};
    };
    const auto snapshots = [](const std::string& name) {
        return nlohmann::json::array({{{"name", name}, {"displayName", "S"}}});
    };
    return {{"volumes", {volume("1"), volume("2")}},
            {"snapshots", {{"cg1", snapshots("snap1")}, {"cg2", snapshots("snap2")}}},
            {"servers", {{{"name", "srv1"}, {"displayName", "host"}, {"iqn", "iqn.a"}, {"iscsiIp", "10.0.0.9"}}}},
            {"drives", nlohmann::json::array()},
            {"nextNumber", 7}};
}

std::string Replaced(std::string text, const std::string& what, const std::string& by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

/// Puts N for the number in generated names, which depends on the clock.
std::string WithoutNumbers(const std::string& text) {
    static const std::regex generated("(snap_)[0-9]+(_)|(_)[0-9]+(\\.clone)");
    return std::regex_replace(text, generated, "$1$3N$2$4");
}

}  // namespace

void ArrayTest::SetUp() {
    SimulatedTest::SetUp();
    array.GetConnection(connection);
    simulator.SetState(0, Inventory());
    TakeRecords();
}

std::string ArrayTest::Records() const {
    return WithoutNumbers(Replaced(Replaced(TakeRecords(), simulator.Address(), "ADDRESS"), simulator.Key(), "KEY"));
}

std::string ArrayTest::Wire() {
    std::string wire;
    for (const Testing::JournalEntry& entry : Testing::Simulator::Instance().Journal()) {
        wire += entry.method + ' ' + entry.target + ' ' + entry.body + '\n';
    }
    Testing::Simulator::Instance().ClearJournal();
    return WithoutNumbers(wire);
}

void ArrayTest::Answer(int status, const std::string& body, int count) {
    Testing::Simulator::Instance().Arm({{"kind", "status"}, {"status", status}, {"body", body}, {"count", count}});
}

std::string Exchanged(const std::string& path, int code) {
    return "3 Entering KConnection::InitializeCurl\n3 URL: https://ADDRESS" + path +
           "\n3 X-Access-Key: KEY\n3 Exiting KConnection::InitializeCurl\n" +
           (code == 0 ? "" : "4 HTTP Return Code :" + std::to_string(code) + '\n');
}

std::string Lines(const std::string& className, bool destruction) {
    const std::string name = className + (destruction ? "::~" : "::") + className + "()\n";
    return "3 Entering " + name + "3 Exiting " + name;
}

}  // namespace Korvel
