#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace Korvel::Testing {

/// A request as an array of the simulator received it.
struct JournalEntry {
    std::uint64_t sequence = 0;                                ///< over all arrays, from 1
    std::size_t array = 0;                                     ///< number of the array, from 0
    std::string method;                                        ///< request method
    std::string target;                                        ///< path as it stood on the wire
    std::string version;                                       ///< "HTTP/1.1"
    std::vector<std::pair<std::string, std::string>> headers;  ///< in the order sent
    std::string body;                                          ///< the body's bytes; as JSON if they are no UTF-8
    bool newConnection = false;                                ///< whether it was the first of its connection
    std::uint64_t fault = 0;                                   ///< number of the fault it met, 0 for none
};

/// The tests' hold on a running korvel-simulator, found through KORVEL_SIMULATOR_CONTROL ("host:port").
/// Every operation throws std::runtime_error with the simulator's message when it fails.
class Simulator {
public:
    /// Returns the one simulator; connects on the first call.
    static Simulator& Instance();

    /// Connects to the control interface at `control`, "host:port".
    explicit Simulator(std::string control);

    /// Returns the number of arrays.
    std::size_t Arrays() const { return arrays.size(); }

    /// Returns the address ("host:port") of the array with the number `array`, from 0.
    const std::string& Address(std::size_t array = 0) const { return arrays.at(array).first; }

    /// Returns that array's access key.
    const std::string& Key(std::size_t array = 0) const { return arrays.at(array).second; }

    /// Puts every array back to what it held at start and forgets faults and journal.
    void Reset();

    /// Returns what an array holds.
    nlohmann::json State(std::size_t array = 0);

    /// Replaces what an array holds.
    void SetState(std::size_t array, const nlohmann::json& state);

    /// Sends a text as it is to a path of the control interface.
    void Put(const std::string& path, const std::string& text);

    /// Arms a fault and returns its number.
    std::uint64_t Arm(const nlohmann::json& fault);

    /// Returns the faults that have not hit as many requests as they were armed for.
    nlohmann::json UnfiredFaults();

    /// Forgets all faults.
    void ClearFaults();

    /// Returns the requests since the start, the last Reset or the last ClearJournal.
    std::vector<JournalEntry> Journal();

    /// Forgets the requests.
    void ClearJournal();

private:
    nlohmann::json Call(const char* method, const std::string& path, const std::string& sent = {});

    std::string host;
    std::vector<std::pair<std::string, std::string>> arrays;
};

/// A test against the running simulator. Its arrays hold at the beginning what they held when it was started, and each
/// fault that the test arms has to have hit as many requests as it was armed for by the end.
class SimulatedTest : public testing::Test {
protected:
    void SetUp() override { simulator.Reset(); }
    void TearDown() override { EXPECT_EQ(simulator.UnfiredFaults(), nlohmann::json::array()); }

    Simulator& simulator = Simulator::Instance();
};

}  // namespace Korvel::Testing
