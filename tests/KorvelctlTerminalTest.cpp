// korvelctl at a terminal: a person types, reads a prompt, waits and loses patience.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>

#include "support/Korvelctl.h"

namespace Korvel::Testing {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// A run of korvelctl on a terminal of its own.
class Terminal {
public:
    /// @param before words before the program
    explicit Terminal(const std::string& arguments, const std::string& before = "") {
        const std::string line = "exec " + before + KorvelctlCommand() + " " + arguments;
        process = forkpty(&terminal, nullptr, nullptr, nullptr);
        if (process == 0) {
            std::signal(SIGINT, SIG_DFL);  // ignored by what a script starts in the background
            execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
            std::_Exit(127);
        }
    }
    ~Terminal() {
        if (process > 0) {
            kill(process, SIGKILL);
            waitpid(process, nullptr, 0);
        }
        close(terminal);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Types keys; a control character acts as on a keyboard.
    void Type(const std::string& keys) const {
        ASSERT_EQ(write(terminal, keys.data(), keys.size()), ssize_t(keys.size()));
    }

    /// Makes the window narrower.
    void Narrow(unsigned short columns) const {
        const winsize size{24, columns, 0, 0};
        ioctl(terminal, TIOCSWINSZ, &size);
    }

    /// Reads on until the screen has shown a text, or the program has ended.
    void ReadUntil(const std::string& text) {
        while (screen.find(text) == std::string::npos && ReadMore()) {
        }
        EXPECT_THAT(screen, HasSubstr(text));
    }

    /// @return whether what is typed is shown
    bool Echoes() const {
        termios settings{};
        tcgetattr(terminal, &settings);
        return (settings.c_lflag & static_cast<tcflag_t>(ECHO)) != 0;
    }

    /// Reads to the end and returns the exit status, -1 when a signal ended the program.
    int End() {
        while (ReadMore()) {
        }
        int status = 0;
        waitpid(process, &status, 0);
        process = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string screen;

private:
    bool ReadMore() {
        pollfd ready{terminal, POLLIN, 0};
        char bytes[4096];
        const ssize_t count = poll(&ready, 1, 120000) > 0 ? read(terminal, bytes, sizeof bytes) : -1;
        screen.append(bytes, count > 0 ? static_cast<std::size_t>(count) : 0);
        return count > 0;
    }

    int terminal = -1;
    pid_t process = -1;
};

const std::string CtrlC = "\x03";
const std::string EndOfInput = "\x04";
const std::string Delete = "volume delete mail-1-0003";
const std::string Prompt = "Type yes to go on: ";

TEST_F(KorvelctlTest, OnlyTheWordYesAgrees) {
    for (const std::string answer : {"no\n", "y\n", "YES\n", "yes please\n", "\n", EndOfInput.c_str()}) {
        Terminal terminal(Delete + " --json");
        terminal.ReadUntil(Prompt);
        terminal.Type(answer);
        EXPECT_EQ(terminal.End(), 4) << answer;
        EXPECT_THAT(terminal.screen, AllOf(HasSubstr("with all its data."), HasSubstr("nothing was changed"),
                                           HasSubstr("\"kind\":\"declined\"")));
        EXPECT_THAT(Changes(), IsEmpty());
    }
    Terminal terminal(Delete);
    terminal.ReadUntil(Prompt);
    terminal.Type("yes\n");
    EXPECT_EQ(terminal.End(), 0) << terminal.screen;
    EXPECT_EQ(Changes(), "DELETE /api/volumes/vol-00000003\n");
}

TEST_F(KorvelctlTest, TheQuestionListsWhatItIsAboutLineByLine) {
    TakeSnapshots();
    simulator.ClearJournal();
    Terminal terminal(Filled("snapshot delete --array {A} " + snapshot));
    terminal.ReadUntil(Prompt);
    EXPECT_THAT(terminal.screen,
                HasSubstr("This deletes\r\n  " + snapshot + " on array " + simulator.Address() + "\r\n"));
    terminal.Type(CtrlC);
    EXPECT_EQ(terminal.End(), 130);
    EXPECT_THAT(Changes(), IsEmpty());
    Terminal rollback(Filled("volume rollback --array {A} --snapshot " + snapshot));
    rollback.ReadUntil(Prompt);
    EXPECT_THAT(rollback.screen, HasSubstr("what was written since is lost"));
    rollback.Type("no\n");
    EXPECT_EQ(rollback.End(), 4);
    EXPECT_THAT(Changes(), IsEmpty());
}

TEST_F(KorvelctlTest, AKeyIsNotShownAndAnInterruptionLeavesTheTerminalAsItWas) {
    const std::string validate = Filled("array validate {A} --key-stdin");
    Terminal terminal(validate);
    terminal.ReadUntil("Access key: ");
    terminal.Type(simulator.Key() + "\n");
    EXPECT_EQ(terminal.End(), 0) << terminal.screen;
    EXPECT_THAT(terminal.screen, Not(HasSubstr(simulator.Key())));

    Terminal storing("config add 10.0.0.9");
    storing.ReadUntil("Access key: ");
    storing.Type("typed\n");
    EXPECT_EQ(storing.End(), 0) << storing.screen;
    EXPECT_THAT(storing.screen, Not(HasSubstr("typed")));
    EXPECT_THAT(ReadFile(std::getenv("KORVEL_REGISTRY")), HasSubstr("\"typed\""));

    Terminal impatient(validate);
    impatient.ReadUntil("Access key: ");
    while (impatient.Echoes()) {
        usleep(1000);
    }
    impatient.Type(CtrlC);
    EXPECT_EQ(impatient.End(), 130);
    EXPECT_TRUE(impatient.Echoes());
}

TEST_F(KorvelctlTest, WhatIsWaitedForIsShownAndGoneAtTheEnd) {
    const std::string address = simulator.Address(1);
    const std::string find = "volume find --snapshot nobody";
    simulator.Arm({{"kind", "delay"},
                   {"delay", 3500},
                   {"array", 1},
                   {"path", "/api/consistency_groups/cg-00000002/snapshots"},
                   {"count", 2}});
    Terminal terminal(find);
    const Result piped = Run(find);  // waits as long
    EXPECT_EQ(piped.status, 2);
    EXPECT_THAT(piped.err, Not(HasSubstr("waiting")));
    terminal.ReadUntil("waiting for array " + address + ", 1 of 4 groups asked");
    EXPECT_EQ(terminal.End(), 2);
    const auto last = terminal.screen.rfind("groups asked");
    EXPECT_THAT(terminal.screen.substr(last), HasSubstr("\r    "));
}

TEST_F(KorvelctlTest, CtrlCTellsWhatMayHaveBeenDone) {
    simulator.Arm({{"kind", "delay"}, {"delay", 30000}, {"array", 0}, {"path", "/api/snapshots/snapshots_set"}});
    simulator.Arm({{"kind", "delay"}, {"delay", 30000}, {"array", 1}, {"path", "/api/servers"}});
    Terminal change("snapshot create mail-1-0003");
    Terminal look("server list --format json");
    change.ReadUntil("waiting for array " + simulator.Address());
    change.Narrow(20);
    change.ReadUntil("\rwaiting for array 1\r");
    change.Type(CtrlC);
    EXPECT_EQ(change.End(), 75);
    EXPECT_THAT(change.screen, HasSubstr("may have been carried out"));

    look.ReadUntil("srv-00000001");  // what is there is shown meanwhile
    look.ReadUntil("waiting for array " + simulator.Address(1));
    look.Type(CtrlC);
    EXPECT_EQ(look.End(), 130);
    EXPECT_THAT(look.screen, AllOf(HasSubstr("has not answered before the interruption"),
                                   HasSubstr("\"kind\":\"interrupted\""), HasSubstr("], \"status\": 130}")));
}

TEST_F(KorvelctlTest, OnlyStatesHaveAColourAndOnlyWhereItIsWanted) {
    const struct {
        std::string environment;
        bool coloured;
    } cases[] = {
        {"TERM=xterm NO_COLOR=", true}, {"TERM=xterm NO_COLOR=1", false}, {"TERM=dumb", false}, {"TERM=", false}};
    for (const auto& [environment, coloured] : cases) {
        Terminal terminal("config check", "env " + environment + " ");
        EXPECT_EQ(terminal.End(), 0);
        EXPECT_THAT(terminal.screen, HasSubstr(coloured ? "  \x1b[32min order\x1b[0m  " : "  in order  "))
            << environment;
    }
    registry.SetText("99.0.0.9", "AccessKey", "");
    Terminal faulty("config check", "env -u NO_COLOR TERM=xterm ");
    EXPECT_EQ(faulty.End(), 1);
    EXPECT_THAT(faulty.screen, HasSubstr("  \x1b[31mthe access key is empty\x1b[0m  "));
    EXPECT_THAT(Run("config check").out, Not(HasSubstr("\x1b")));
}

}  // namespace
}  // namespace Korvel::Testing
