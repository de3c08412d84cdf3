#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "support/Simulator.h"
#include "support/TestRegistry.h"

namespace Korvel::Testing {

/// How a run of korvelctl ended and what it wrote.
struct Result {
    int status;
    std::string out;
    std::string err;
};

/// A result whose status is this and whose visible output (stdout when it is 0, otherwise stderr) matches.
MATCHER_P2(EndsWith, status, shown, "ends with status " + testing::PrintToString(status)) {
    *result_listener << "which ended with " << arg.status << "\nstdout: " << arg.out << "\nstderr: " << arg.err;
    return arg.status == status &&
           testing::Value(status == 0 ? arg.out : arg.err, testing::SafeMatcherCast<const std::string&>(shown));
}

/// korvelctl as its users see it: a command line in, tables, messages, exit statuses and requests out. Two simulated
/// arrays are configured.
class KorvelctlTest : public SimulatedTest {
protected:
    KorvelctlTest();
    ~KorvelctlTest() override;

    /// Puts the arrays' addresses for {A} and {B}.
    std::string Filled(std::string arguments) const;

    /// Runs a command through the system's own shell. The simulator's journal then holds its requests alone. What it
    /// writes with --json has to be one object as the schema wants it, with the status the command ends with.
    Result Run(const std::string& arguments, const std::string& input = "");

    /// Runs several commands at once, for those that wait.
    std::vector<Result> RunAtOnce(const std::vector<std::string>& arguments);

    /// @return the requests of the last command: method and path, one line each
    std::string Requests();

    /// @return those of them that change something
    std::string Changes();

    /// Takes a snapshot of the first volume of either array; both arrays give it the same name.
    void TakeSnapshots();

    /// @return a path for a file of this test, which goes with it
    std::string OwnFile(const std::string& name) const { return folder + name; }

    /// Writes a file of this test.
    void WriteFile(const std::string& path, const std::string& bytes) const;

    /// @return a file's text, without the '\r' of lines' ends
    static std::string ReadFile(const std::string& path);

    const std::string snapshot = "snap-00000005";
    TestRegistry registry;

private:
    Result Execute(const std::string& arguments, const std::string& name);

    std::string folder;
};

/// @return the program that KORVELCTL_COMMAND names, which may have words before it
std::string KorvelctlCommand();

}  // namespace Korvel::Testing
