#include "Logger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#if !defined(_WIN32)
#include <fcntl.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

// The settings are read once in a process, so every case writes its records in a child and leaves with exit().

/// What comes before the text of a record of this file.
const std::string head = R"(2\d{3}-[01]\d-[0-3]\dT[0-2]\d:[0-5]\d:[0-5]\d\.\d{3}Z )";

MATCHER_P(Reads, pattern, "reads " + std::string(pattern)) {
    return std::regex_match(arg, std::regex(pattern));
}

void Set(const char* name, const std::string& value) {
#if defined(_WIN32)
    _putenv_s(name, value.c_str());
#else
    setenv(name, value.c_str(), 1);
#endif
}

template <typename... Arguments>
void Log(int level, const char* format, Arguments... arguments) {
    Logger::Write(level, const_cast<char*>("Test"), const_cast<char*>(format), arguments...);
}

std::string ContentOf(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

/// @return the log file of this run; a child that comes through here again finds it in its environment
std::string OwnPath() {
    if (const char* inherited = std::getenv("KORVEL_LOGGER_TEST_FILE"); inherited != nullptr) {
        return inherited;
    }
    std::string path = testing::TempDir() + "korvel-logger-test-" + std::to_string(std::random_device()()) + ".log";
    Set("KORVEL_LOGGER_TEST_FILE", path);
    return path;
}

class LoggerTest : public testing::Test {
protected:
    LoggerTest() {
        Set("KORVEL_LOG_FILE", "");
        Set("KORVEL_LOG_LEVEL", "");
    }
    ~LoggerTest() override { std::filesystem::remove(path); }  // not before: a child may come through here, too

    const std::string path = OwnPath();
};

TEST_F(LoggerTest, WritesRecordsUpToTheSetLevel) {
    const auto logAllLevels = [](const char* setting) {
        Set("KORVEL_LOG_LEVEL", setting);
        for (const int level : {0, 2, 3, 4}) {
            Log(level, "level %d", level);
        }
        std::exit(0);
    };
    const std::string zero = head + "0 Test level 0\n";
    const auto notNumber = [](const std::string& text) {
        return "Korvel log: KORVEL_LOG_LEVEL is not a number: \"" + text + "\"; level 0 is used\n";
    };
    EXPECT_EXIT(logAllLevels(""), testing::ExitedWithCode(0), Reads(zero));
    EXPECT_EXIT(logAllLevels("3"), testing::ExitedWithCode(0),
                Reads(zero + head + "2 Test level 2\n" + head + "3 Test level 3\n"));
    for (const char* text : {"3x", "x", " 3", "99999999999"}) {
        EXPECT_EXIT(logAllLevels(text), testing::ExitedWithCode(0), Reads(notNumber(text) + zero));
    }
    EXPECT_EXIT(logAllLevels("-1"), testing::ExitedWithCode(0), "^$");
}

TEST_F(LoggerTest, KeepsARecordInOneLine) {
    const auto logOddTexts = [] {
        const std::string longText(100000, 'x');
        const wchar_t noText[] = {static_cast<wchar_t>(0xdfff), 0};
        errno = 4711;
        Log(0, "\n\r\t\x1b\x7f\\ \xc3\xa4 \xc2\x9b\xc2\xa0\xe2\x80\xae\xe2\x80\xaf\xe2\x81\xa6\xe2\x81\xaa\xc2 %s",
            "100%s\n");
        Log(0, longText.c_str());
        Log(0, "%s", longText.c_str());
        Log(0, "bad %ls", noText);
        Logger::Write(0, nullptr, nullptr);
        std::exit(errno == 4711 ? 0 : 1);
    };
    const auto fiveLines = [](const std::string& text) {
        return std::count(text.begin(), text.end(), '\n') == 5 && text.size() > 200000 &&
               text.find(
                   "Z 0 Test \\n\\r\\t\\x1b\\x7f\\ \xc3\xa4 "
                   "\\xc2\\x9b\xc2\xa0\\xe2\\x80\\xae\xe2\x80\xaf\\xe2\\x81\\xa6\xe2\x81\xaa\xc2 100%s\\n\n") !=
                   std::string::npos &&
               std::regex_search(text, std::regex("Test (\\(can't be formatted\\) bad %ls|bad )\n")) &&
               text.ends_with("Z 0 - \n");
    };
    EXPECT_EXIT(logOddTexts(), testing::ExitedWithCode(0), testing::Truly(fiveLines));
}

TEST_F(LoggerTest, AppendsToItsOwnersFile) {
    const auto logOnce = [this] {
        Set("KORVEL_LOG_FILE", path);
        Log(0, "text");
        std::exit(0);
    };
    EXPECT_EXIT(logOnce(), testing::ExitedWithCode(0), "^$");
    EXPECT_EXIT(logOnce(), testing::ExitedWithCode(0), "^$");
    EXPECT_THAT(ContentOf(path), Reads("(" + head + "0 Test text\n){2}"));
#if !defined(_WIN32)  // The emulated rights of a Windows file say nothing about the real ones.
    EXPECT_EQ(std::filesystem::status(path).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
#endif
}

TEST_F(LoggerTest, FallsBackToStandardError) {
    const auto logTwice = [](const std::string& file) {
        Set("KORVEL_LOG_FILE", file);
        Log(0, "one");
        Log(0, "two");
        std::exit(0);
    };
    const std::string records = head + "0 Test one\n" + head + "0 Test two\n";
    EXPECT_EXIT(logTwice(path + "/none/log"), testing::ExitedWithCode(0),
                Reads("Korvel log: can't open .*log.none.log: .*; standard error is used\n" + records));
#if !defined(_WIN32)
    EXPECT_EXIT(logTwice("/dev/full"), testing::ExitedWithCode(0), Reads(records));
#endif
}

TEST_F(LoggerTest, KeepsRecordsOfThreadsAndProcessesApart) {
    const auto logFromEverywhere = [this] {
        Set("KORVEL_LOG_FILE", path);
#if !defined(_WIN32)
        const pid_t child = fork();
#endif
        std::vector<std::thread> threads;
        threads.reserve(4);
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([] {
                for (int index = 0; index < 250; ++index) {
                    Log(0, "%s", std::string(5000, 'x').c_str());
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
#if !defined(_WIN32)
        if (child != 0) {
            waitpid(child, nullptr, 0);
        }
#endif
        std::exit(0);
    };
    EXPECT_EXIT(logFromEverywhere(), testing::ExitedWithCode(0), "^$");
    std::istringstream lines(ContentOf(path));
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        ASSERT_EQ(line.substr(24), " 0 Test " + std::string(5000, 'x'));
    }
#if defined(_WIN32)
    EXPECT_EQ(count, 1000);
#else
    EXPECT_EQ(count, 2000);
#endif
}

struct LastWords {
    ~LastWords() { Log(0, "last"); }
};

TEST_F(LoggerTest, WritesWhileTheProcessEnds) {
    const auto logAtExit = [] {
        static const LastWords lastWords;  // its destructor comes after those of everything the first record makes
        Log(0, "first");
        std::exit(0);
    };
    EXPECT_EXIT(logAtExit(), testing::ExitedWithCode(0), Reads(head + "0 Test first\n" + head + "0 Test last\n"));
}

#if !defined(_WIN32)
TEST_F(LoggerTest, SurvivesAReaderThatIsGone) {
    const auto logToBrokenPipe = [] {
        int ends[2];
        if (pipe(ends) == 0 && dup2(ends[1], STDERR_FILENO) >= 0 && close(ends[0]) == 0) {
            Log(0, "nobody reads this");
        }
        std::exit(0);
    };
    EXPECT_EXIT(logToBrokenPipe(), testing::ExitedWithCode(0), "");
}

// The pipe is full most of the time, and signals interrupt the writer, whether it waits in write() or in poll().
TEST_F(LoggerTest, WritesARecordWholeThroughASlowAndInterruptedPipe) {
    const auto logThroughPipe = [](int flags) {
        int ends[2];
        struct sigaction action {};
        action.sa_handler = [](int) {};  // without SA_RESTART: write() returns
        if (pipe(ends) != 0 || fcntl(ends[1], F_SETFL, flags) != 0 || sigaction(SIGUSR1, &action, nullptr) != 0) {
            std::exit(2);
        }
        const int ownError = dup(STDERR_FILENO);
        dup2(ends[1], STDERR_FILENO);
        close(ends[1]);
        std::string received;
        std::atomic<bool> written = false;
        std::thread reader([&, writer = pthread_self()] {
            std::array<char, 4096> block;
            for (ssize_t count = 1; count > 0;) {
                for (int times = 0; times < 2 && !written; ++times) {
                    pthread_kill(writer, SIGUSR1);
                    usleep(100);  // so that it meets both
                }
                count = read(ends[0], block.data(), block.size());
                received.append(block.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
            }
        });
        const std::string text(1000000, 'x');
        Log(0, "%s", text.c_str());
        written = true;
        dup2(ownError, STDERR_FILENO);  // the pipe's last writing end is closed
        reader.join();
        std::exit(received.size() > 26 && received.substr(24) == " 0 Test " + text + '\n' ? 0 : 1);
    };
    for (const int flags : {0, O_NONBLOCK}) {
        EXPECT_EXIT(logThroughPipe(flags), testing::ExitedWithCode(0), "^$");
    }
}
#endif

}  // namespace
