#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "support/Korvelctl.h"

namespace Korvel::Testing {
namespace {

using testing::HasSubstr;
using testing::Not;

struct Step {
    std::string arguments;
    int status;
    std::string shown;
    std::string input = {};
};

TEST_F(KorvelctlTest, ArraysAreConfiguredAndForgotten) {
    registry.Clear();
    WriteFile(OwnFile("key"), simulator.Key(0) + "\n");
    const Step steps[] = {
        {"config add {A} --key-stdin", 0, "added", "not the key"},
        {"array validate {A}", 1, "does not accept the access key"},
        {"config set-key {A} --key-file " + OwnFile("key"), 0, "replaced"},
        {"array validate {A}", 0, "accepted"},
        {"config add {A} --key-stdin", 1, "is configured already", "other"},
        {"config add Array.Example --key-stdin", 0, "added", R"(a"b\c)"},
        {"config add array.EXAMPLE --key-stdin", 1, "is configured already", "other"},
        {"config check", 0, "Array.Example"},
        {"config set-key 10.0.0.9 --key-stdin", 2, "no array 10.0.0.9", "key"},
        {"config remove 10.0.0.9", 2, "no array 10.0.0.9"},
        {"config remove array.example", 0, "removed"},
        {"config remove array.example", 2, "no array"},
        {"config remove \"\\\\\"", 2, "no array"},
        {"config remove", 64, "ADDRESS"},
        {"config add 10.0.0.9", 64, "--key-file or --key-stdin"},
        {"config add 10.0.0.9/x --key-stdin", 64, "'/'", "key"},
        {"config add 10.0.0.9 --key-stdin --json", 0, "\"added\"", std::string(241, 'k')},
        {"array validate {A}", 0, "accepted"},
    };
    for (const Step& step : steps) {
        EXPECT_THAT(Run(step.arguments, step.input), EndsWith(step.status, HasSubstr(step.shown))) << step.arguments;
    }
}

TEST_F(KorvelctlTest, TheConfigurationCheckFindsWhatIsHardlyMeant) {
    struct Value {
        std::string address;
        std::string name;
        unsigned long type;
        std::string bytes;
        std::string finding;
    };
    using namespace std::string_literals;
    const Value values[] = {
        {"10.0.0.9", "AccessKey", 3, "k\0e\0y\0\0\0"s, "the AccessKey value is UTF-16 in bytes"},
        {"10.0.0.9", "AccessKey", 3, "key\0more"s, "holds a zero byte"},
        {"10.0.0.9", "AccessKey", 4, "keys", "is a number"},
        {"10.0.0.9", "AcessKey", 1, "key\0"s, "the value 'AcessKey' is not read: is 'AccessKey' meant?"},
        {simulator.Address(0) + ".", "AccessKey", 1, "key\0"s, "another access key"},
        {simulator.Address(0) + ".", "AccessKey", 1, simulator.Key(0) + '\0', "the same access key"},
    };
    for (const Value& value : values) {
        registry.SetBytes(value.address, value.name, value.type, {value.bytes.begin(), value.bytes.end()});
        EXPECT_THAT(Run("config check"), EndsWith(1, HasSubstr(value.finding)));
        EXPECT_THAT(Run("config check --json").out, HasSubstr(value.finding));
        registry.Remove(value.address);
    }
    EXPECT_EQ(Run("config check").status, 0);
}

TEST_F(KorvelctlTest, AnAccessKeyIsReadFromWhateverAnEditorOrShellMakes) {
    const std::string key = simulator.Key();
    std::string wide;
    for (const char character : key + "\r\n") {
        wide += {character, '\0'};
    }
    std::string swapped;
    for (const char character : key) {
        swapped += {'\0', character};
    }
    const std::pair<std::string, int> files[] = {{key, 0},
                                                 {key + "\r\nsecond line", 0},
                                                 {"\xEF\xBB\xBF" + key + "\n", 0},
                                                 {"\xFF\xFE" + wide, 0},
                                                 {"\xFE\xFF" + swapped, 0},
                                                 {std::string("\xFF\xFE\x20\x26", 4), 1},
                                                 {wide, 1},
                                                 {"", 64},
                                                 {std::string(100000, 'k'), 64}};
    for (const auto& [bytes, status] : files) {
        WriteFile(OwnFile("key"), bytes);
        EXPECT_EQ(Run("array validate {A} --key-file " + OwnFile("key")).status, status) << bytes.substr(0, 50);
    }
    EXPECT_THAT(Run("array validate {A} --key-file x --key-stdin"), EndsWith(64, HasSubstr("--key-stdin")));
}

TEST_F(KorvelctlTest, TheConfigurationCheckNamesEveryFault) {
    // An address that every registry lists last: the library stops at the first entry it cannot use.
    const auto key = [this](const std::string& text) { registry.SetText("99.0.0.9", "AccessKey", text); };
    const auto check = [this](int status, const std::string& shown) {
        EXPECT_THAT(Run("config check"), EndsWith(status, HasSubstr(shown)));
    };
    const auto listing = [this](int status) {  // the library must not end the process
        const Result result = Run("array list");
        EXPECT_EQ(result.status, status) << result.err;
        EXPECT_THAT(result.out, status == 3 ? HasSubstr(simulator.Address()) : HasSubstr(""));
    };
    check(0, simulator.Address(1) + "  in order");
    registry.AddArray("99.0.0.9");
    check(1, "99.0.0.9: the AccessKey value is missing");
    listing(3);
    key("");
    check(1, "99.0.0.9: the access key is empty");
    key(std::string(242, 'k'));
    check(1, "at most 241");
    listing(1);
    registry.SetBytes("99.0.0.9", "AccessKey", 3, std::vector<unsigned char>(257, 'k'));
    check(1, "larger than 256 bytes");
    listing(3);
    EXPECT_THAT(Run("volume find --name mail-1-0003"), EndsWith(3, HasSubstr("'korvelctl config check'")));
    registry.Remove("99.0.0.9");
    registry.SetText(std::string(233, 'a'), "AccessKey", "key");
    check(1, "at most 232");
    listing(1);
    registry.Clear();
    check(1, "HwProvider");
    registry.AddRoot();
    check(0, "names no array");
    EXPECT_EQ(Run("volume find --name a").status, 1);
}

#if !defined(_WIN32)

const std::string Header = "Windows Registry Editor Version 5.00\n";
const std::string Root = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvel\\HwProvider";
const std::string Other = "[" + Root + "\\10.0.0.2] ;two\n  \"AccessKey\" = \"2\";no blank\n@=hex(7):41,\\\n42\n\n";

std::string RegistryPath() {
    return std::getenv("KORVEL_REGISTRY");
}

std::string Entry(const std::string& values) {
    return "[" + Root + "\\10.0.0.1]\n" + values;
}

TEST_F(KorvelctlTest, OfTheRegistryFileNothingButTheEntryChanges) {
    struct Edit {
        std::string command;
        std::string before;
        std::string after;
    };
    const std::string set = "set-key 10.0.0.1 --key-stdin";
    const std::string stored = "\"AccessKey\"=\"k\\\\\"\n";
    const Edit edits[] = {
        {"add 10.0.0.1 --key-stdin", Header + Other, Header + Other + "\n" + Entry(stored)},
        {"add 10.0.0.1 --key-stdin", Header + "; no end", Header + "; no end\n\n" + Entry(stored)},
        {"remove 10.0.0.1", Header + Other + "\n" + Entry(stored), Header + Other},
        {"remove 10.0.0.1", Header + Entry("\"a\"=\"b\"\n; kept\n") + Other, Header + "; kept\n" + Other},
        {"remove 10.0.0.1", Header + "[" + Root + "\\10.0.0.1] ; kept\n" + Other, Header + "; kept\n" + Other},
        {"remove 10.0.0.1", Header + Entry("[" + Root + "\\10.0.0.1\\deep]\n@=\"x\"\n") + Other + Entry(""),
         Header + Other.substr(0, Other.size() - 1)},
        {set, Header + Entry(" \"accesskey\"= \"1\" ; kept\n") + Other,
         Header + Entry(" \"accesskey\"= \"k\\\\\" ; kept\n") + Other},
        {set, Header + Entry("\"AccessKey\"=hex:31,\\ ; first\n 32 ;second\n"),
         Header + Entry("; first\n\"AccessKey\"=\"k\\\\\" ;second\n")},
        {set, Header + Entry("\"AccessKey\"=\"1\"\n\"b\"=\"c\"\n") + Entry("\"AccessKey\"=\"2\"\n"),
         Header + Entry("\"b\"=\"c\"\n") + Entry(stored)},
        {set, Header + Entry("\"AccessKey\"=\"1\"\n") + "[-" + Root + "]\n" + Entry("; none\n") + Other,
         Header + Entry("") + "[-" + Root + "]\n" + Entry(stored + "; none\n") + Other},
        {set, Header + "[" + Root + "\\10.0.0.1\\deep]\n",
         Header + "[" + Root + "\\10.0.0.1\\deep]\n\n" + Entry(stored)},
    };
    for (const Edit& edit : edits) {
        for (const std::string mark : {"", "\xEF\xBB\xBF"}) {
            WriteFile(RegistryPath(), mark + edit.before);
            EXPECT_EQ(Run("config " + edit.command, "k\\").status, 0) << edit.before;
            EXPECT_EQ(ReadFile(RegistryPath()), mark + edit.after);
        }
    }
}

TEST_F(KorvelctlTest, TheRegistryFileKeepsItsEncodingItsPlaceAndItsSecrets) {
    namespace fs = std::filesystem;
    // As the registry editor exports it: two bytes for each character, a carriage return before each line's end.
    const auto wide = [](const std::u16string& text) {
        std::string bytes = "\xFF\xFE";
        for (const char16_t unit : text) {
            bytes += {static_cast<char>(unit & 0xff), static_cast<char>(unit >> 8)};
        }
        return bytes;
    };
    const std::u16string begin = u"Windows Registry Editor Version 5.00\r\n; \u00e4\u20ac\U0001F5C4\r\n";
    const std::u16string entry =
        u"\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvel\\HwProvider\\10.0.0.1]\r\n"
        u"\"AccessKey\"=\"k\u00e4\U0001F5C4\"\r\n";
    const std::string target = OwnFile("moved.reg");
    WriteFile(target, wide(begin));
    fs::permissions(target, fs::perms(0644));
    fs::remove(RegistryPath());
    fs::create_symlink(target, RegistryPath());
    EXPECT_EQ(Run("config add 10.0.0.1 --key-stdin", "k\xc3\xa4\xf0\x9f\x97\x84").status, 0);
    WriteFile(OwnFile("wanted"), wide(begin + entry));
    EXPECT_EQ(ReadFile(target), ReadFile(OwnFile("wanted")));
    EXPECT_TRUE(fs::is_symlink(RegistryPath()));
    EXPECT_EQ(fs::status(target).permissions(), fs::perms(0600));
    EXPECT_EQ(Run("config remove 10.0.0.1").status, 0);
    WriteFile(OwnFile("wanted"), wide(begin));
    EXPECT_EQ(ReadFile(target), ReadFile(OwnFile("wanted")));

    // What cannot be changed is left as it was.
    const std::string malformed = Header + "[" + Root + "\n";
    WriteFile(target, malformed);
    EXPECT_THAT(Run("config add 10.0.0.1 --key-stdin", "k"), EndsWith(1, HasSubstr(":2: key is not closed")));
    EXPECT_EQ(ReadFile(target), malformed);
    WriteFile(target, Header);
    EXPECT_THAT(Run("config add 'a];b' --key-stdin", "k"), EndsWith(64, HasSubstr("no way to write this")));
    EXPECT_THAT(Run("config add 10.0.0.1 --key-stdin", "\xff"), EndsWith(64, HasSubstr("not UTF-8")));
    EXPECT_EQ(ReadFile(target), Header);

    // A file that is missing is made, with its folder.
    fs::remove(RegistryPath());
    const fs::path made = OwnFile("etc");
    setenv("KORVEL_REGISTRY", (made / "registry.reg").c_str(), 1);
    EXPECT_EQ(Run("config add 10.0.0.1 --key-stdin", "k").status, 0);
    EXPECT_EQ(Run("config check").status, 0);
    EXPECT_EQ(fs::status(made / "registry.reg").permissions(), fs::perms(0600));
    EXPECT_EQ(std::distance(fs::directory_iterator(made), {}), 1) << "a temporary file stays";
}

// Whoever changes the file at the same time waits; whoever cannot write it leaves it as it was.
TEST_F(KorvelctlTest, NoChangeOfTheRegistryFileIsLostAndNoneIsHalf) {
    namespace fs = std::filesystem;
    registry.Clear();
    WriteFile(OwnFile("key"), "k");
    const std::string add = KorvelctlCommand() + " config add --key-file " + OwnFile("key");
    const auto shell = [](const std::string& script) {
        return std::system(script.c_str());  // NOLINT(cert-env33-c): jobs and limits are the shell's
    };
    ASSERT_EQ(shell("for i in 1 2 3 4 5 6 7 8; do " + add + " 10.0.1.$i >" + OwnFile("out") + " & done; wait"), 0);
    const Result all = Run("config check");
    EXPECT_THAT(all, EndsWith(0, HasSubstr("in order")));
    for (int i = 1; i <= 8; ++i) {
        EXPECT_THAT(all.out, HasSubstr("10.0.1." + std::to_string(i) + "  in order"));
    }
    const std::string before = ReadFile(RegistryPath());
    EXPECT_NE(shell("trap '' XFSZ; ulimit -f 0; " + add + " 10.0.0.9 >/dev/null 2>&1"), 0) << "as on a full disk";
    const std::string place = fs::path(RegistryPath()).parent_path();
    EXPECT_NE(shell("flock " + place + " " + add + " 10.0.0.9 --timeout 0.2 2>" + OwnFile("err")), 0);
    EXPECT_THAT(ReadFile(OwnFile("err")), HasSubstr("has not ended within 0.2 s; nothing was changed"));
    EXPECT_EQ(ReadFile(RegistryPath()), before);
    EXPECT_EQ(std::distance(fs::directory_iterator(place), {}), 1);
}

TEST_F(KorvelctlTest, TheConfigurationCheckNamesTheLineOfWhatIsHardlyMeant) {
    const std::string key = "\"AccessKey\"=\"1\"\n";
    const std::pair<std::string, std::string> findings[] = {
        {Entry(key) + "[HKEY_LOCAL_MACHINE\\Software\\Korvel\\HwProvidr\\10.0.0.3]\n" + key,
         ":4: the key HKEY_LOCAL_MACHINE\\Software\\Korvel\\HwProvidr is not read"},
        {Entry(key + key), ":4: array 10.0.0.1: the value 'AccessKey' is given twice: the one in line 3"},
        {Entry(key) + Entry("\"accesskey\"=\"2\"\n"),
         ":5: array 10.0.0.1: the value 'accesskey' is given twice and differs"},
        {Entry("\"AccessKey\"=hex(1):31,00,32,00,00,00\n"), ":3: array 10.0.0.1: the AccessKey value is UTF-16"},
        {Entry("\"AccessKey\"=\"unfinished\n"), ":3: text is not closed"},
        {Entry("\"AccessKey\"=dword:41\n"), ":3: array 10.0.0.1: the AccessKey value is a number"},
        // what looks like it and is in order
        {Entry(key + "\"AccessKey\"=-\n" + key), ""},
        {Entry(key) + "[-" + Root + "\\10.0.0.1]\n" + Entry(key), ""},
        {Entry(key) + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvel\\VssProvider]\n@=\"1\"\n@=\"2\"\n", ""},
    };
    for (const auto& [text, finding] : findings) {
        WriteFile(RegistryPath(), Header + text);
        EXPECT_THAT(Run("config check"), EndsWith(finding.empty() ? 0 : 1, HasSubstr(finding))) << text;
    }
    std::filesystem::permissions(RegistryPath(), std::filesystem::perms(0644));
    EXPECT_THAT(Run("config check"), EndsWith(1, HasSubstr("other users can read the file")));
    EXPECT_THAT(Run("config check --json").out, HasSubstr("other users can read the file"));
}

#endif

}  // namespace
}  // namespace Korvel::Testing
