#pragma once

#include <gtest/gtest.h>

#include <string>

#include "model/KorvelAccessLibrary.h"
#include "rest/KConnection.h"
#include "support/Simulator.h"

namespace Korvel {

/// An array object against a simulated array that holds two volumes in groups of their own, with one snapshot each, and
/// one server.
class ArrayTest : public Testing::SimulatedTest {
protected:
    void SetUp() override;

    /// @return the log since the last call, with ADDRESS and KEY for the array's, and N for a generated number
    std::string Records() const;

    /// @return the requests since the last call, one line each: method, target and body, N for a generated number
    static std::string Wire();

    /// Answers the next requests as told.
    static void Answer(int status, const std::string& body, int count = 1);

    KArray array{simulator.Address(), simulator.Key()};
    KConnection* connection = nullptr;
};

/// @return the log lines of one exchange, from the frame's set-up to the response code, or without it for 0
std::string Exchanged(const std::string& path, int code = 200);

/// @return the log lines of the construction or the destruction of an object of a class
std::string Lines(const std::string& className, bool destruction = false);

}  // namespace Korvel
