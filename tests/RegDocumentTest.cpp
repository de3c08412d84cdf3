#include "foundation/registry/regfile/KRegDocument.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "foundation/registry/regfile/KRegError.h"

namespace Korvel {
namespace {

const std::string header = "Windows Registry Editor Version 5.00\n";

struct TemporaryFile {
    explicit TemporaryFile(const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }
    ~TemporaryFile() { std::filesystem::remove(path); }

    const std::string path = testing::TempDir() + "korvel-registry-file-test-" + std::to_string(getpid()) + ".reg";
};

KRegDocument Load(const std::string& bytes) {
    return KRegDocument(TemporaryFile(bytes).path);
}

/// The fault that keeps a file from being read, from what follows its name on; empty if there is none.
std::string FaultOfFile(const std::string& path) {
    try {
        const KRegDocument file(path);
    } catch (const KRegError& error) {
        EXPECT_EQ(std::string(error.what()).substr(0, path.size() + 1), path + ':');
        return error.what() + path.size() + 1;
    }
    return "";
}

std::string FaultOf(const std::string& bytes) {
    return FaultOfFile(TemporaryFile(bytes).path);
}

/// The bytes of value `name` of key `key`, or "(none)".
std::string Value(const KRegDocument& file, const std::string& key, const std::string& name) {
    const KRegNode* node = file.Find(key);
    const auto found = node == nullptr ? KRegNode::Values::const_iterator() : node->values.find(name);
    return node == nullptr || found == node->values.end() ? "(none)"
                                                          : std::string(found->second.begin(), found->second.end());
}

std::string Utf16(const std::u16string& text) {
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += {static_cast<char>(unit & 0xff), static_cast<char>(unit >> 8)};
    }
    return bytes;
}

TEST(RegistryFile, TakesEveryFormOfValue) {
    using namespace std::string_literals;
    const std::pair<std::string, std::string> cases[] = {
        {R"("a"="text")", "text\0"s},
        {R"("a"="")", "\0"s},
        {R"( "a" = "two words" ; a comment)", "two words\0"s},
        {R"("a"="\\back\\ \"quoted\" ; = [x]")", "\\back\\ \"quoted\" ; = [x]\0"s},
        {R"("A"=dword:0001fF02)", "\x02\xff\x01\0"s},
        {"\"a\"=hex:41,4,\\\r\n  43 ,\\ ; goes on\n44 ; ends", "A\x04"s + "CD"},
        {"\"a\"=hex(2):\\\n00,ff", "\0\xff"s},
        {R"("a"=hex:)", ""s},
        {"\"a\"=\"1\"\n\"A\"=\"2\"", "2\0"s},
        {"\"a\"=\"1\"\n\"A\"=-", "(none)"s},
        {"@=\"1\"\n\"a\"=-", "(none)"s},
    };
    const std::string key = header + "[HKEY_LOCAL_MACHINE\\K]\n";
    for (const auto& [line, bytes] : cases) {
        EXPECT_EQ(Value(Load(key + line), "k", "a"), bytes) << line;
    }
    EXPECT_EQ(Value(Load(header + "[HKEY_LOCAL_MACHINE]\n@=\"x\""), "", ""), "x\0"s);
    EXPECT_EQ(Value(Load(key + R"("q\"\\"="x")"), "K", R"(q"\)"), "x\0"s);
}

TEST(RegistryFile, BuildsTheHierarchyInTheOrderOfTheFile) {
    const KRegDocument file = Load(header + R"(; first a deep key
[HKEY_LOCAL_MACHINE\Root\zeta\Deep]
[hkey_local_machine\ROOT\alpha] ; in [brackets]
"one"="1"
[HKEY_CURRENT_USER\Root\alien]
[HKEY_LOCAL_MACHINE\Root\[::1]]
[HKEY_LOCAL_MACHINE\Root\gone\Deep]
[HKEY_LOCAL_MACHINE\Root\ALPHA]
"two"="2"
[HKEY_LOCAL_MACHINE\Root\again]
"old"="x"
[-HKEY_LOCAL_MACHINE\Root\gone]
[-HKEY_LOCAL_MACHINE\Root\never\was]
[-HKEY_LOCAL_MACHINE\Root\again]
[HKEY_LOCAL_MACHINE\Root\last]
[HKEY_LOCAL_MACHINE\Root\again])");
    EXPECT_EQ(file.Find("root")->SubkeyNames(), (std::vector<std::string>{"zeta", "alpha", "[::1]", "last", "again"}));
    EXPECT_EQ(file.Find("Root\\Zeta")->SubkeyNames(), std::vector<std::string>{"Deep"});
    EXPECT_EQ(file.Find("Root\\Alpha")->values.size(), 2U);
    EXPECT_EQ(file.Find("Root\\Alpha")->line, 4U);
    EXPECT_TRUE(file.Find("Root\\again")->values.empty());
    EXPECT_EQ(file.Find("Root\\alien"), nullptr);
}

TEST(RegistryFile, ReadsTheEditorsEncodings) {
    const std::u16string text =
        u"Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\K]\r\n\"a\"=\"\u00e4\U0010FFFD\"\r\n";
    const std::string expected("\xc3\xa4\xf4\x8f\xbf\xbd\0", 7);
    EXPECT_EQ(Value(Load("\xff\xfe" + Utf16(text)), "K", "a"), expected);
    const std::string utf8 = header + "[HKEY_LOCAL_MACHINE\\K]\r\n\"a\"=\"\xc3\xa4\xf4\x8f\xbf\xbd\"";
    EXPECT_EQ(Value(Load(utf8), "K", "a"), expected);
    EXPECT_EQ(Value(Load("\xef\xbb\xbf" + utf8), "K", "a"), expected);

    const std::string start = "\xff\xfe" + Utf16(u"Windows Registry Editor Version 5.00\n\n;");
    for (const std::u16string& bad : {std::u16string{0xdc00}, std::u16string{0xd83d, u'x'}, std::u16string{0xd83d}}) {
        EXPECT_EQ(FaultOf(start + Utf16(bad)), "3: is not valid UTF-16LE");
    }
    EXPECT_EQ(FaultOf(start + "x"), "3: is not valid UTF-16LE");
    for (const char* bad : {"\xff", "\xc3", "\xc0\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xf8\x88\x80\x80\x80"}) {
        EXPECT_EQ(FaultOf(header + ";" + bad), "2: is not valid UTF-8");
    }
    EXPECT_EQ(FaultOf(header + std::string("; \0", 3)), "2: a zero byte in a text file");
}

TEST(RegistryFile, NamesTheLineAndItsFault) {
    const std::string headerFault = "1: the first line is not \"Windows Registry Editor Version 5.00\"";
    const std::string digits = " hexadecimal digits are expected";
    const std::string noData = "3: value is neither a text in quotes nor dword:, hex: or hex(TYPE):";
    const std::string noHive = "2: key doesn't begin with the name of a hive, such as HKEY_LOCAL_MACHINE";
    const std::string key = header + "[HKEY_LOCAL_MACHINE\\K]\n";
    std::string deep = "[HKEY_LOCAL_MACHINE";
    for (int level = 0; level < 512; ++level) {
        deep += "\\k";
    }
    const std::pair<std::string, std::string> cases[] = {
        {"", " the first line is not \"Windows Registry Editor Version 5.00\""},
        {"\n" + header, headerFault},
        {"REGEDIT4\n", headerFault},
        {"Windows Registry Editor Version 5.00 and more\n", headerFault},
        {header + "[HKEY_LOCAL_MACHINE\\K\n", "2: key is not closed"},
        {header + "[HKEY_LOCAL_MACHINE\\K] x\n", "2: key is not closed"},
        {header + "[HKLM\\K]\n", noHive},
        {header + "[]\n", noHive},
        {header + deep + "]\n", "2: key has more than 512 levels"},
        {header + "\"a\"=\"b\"\n", "2: value belongs to no key"},
        {header + "[-HKEY_LOCAL_MACHINE\\K]\n\"a\"=\"b\"\n", "3: value belongs to no key"},
        {key + "name=\"x\"\n", "3: line is neither a key in brackets, nor a value, nor a comment"},
        {key + "\"a\n", "3: text is not closed"},
        {key + "\"a\"\n", "3: no = after the value's name"},
        {key + "\"a\"=\n", noData},
        {key + "\"a\"=12\n", noData},
        {key + "\"a\"=hex(1:41\n", noData},
        {key + "\"a\"=\"b\n\"\n", "3: text is not closed"},
        {key + "\"a\"=\"b\\\"\n", "3: text is not closed"},
        {key + "\"a\"=\"C:\\temp\"\n", "3: a backslash in a text is written as two"},
        {key + "\"a\"=\"b\" c\n", "3: more follows where the line should end"},
        {key + "\"a\"=-\"b\"\n", "3: more follows where the line should end"},
        {key + "\"a\"=dword:\n", "3: 1 to 8" + digits},
        {key + "\"a\"=dword:123456789\n", "3: 1 to 8" + digits},
        {key + "\"a\"=hex:4x\n", "3: more follows where the line should end"},
        {key + "\"a\"=hex:123\n", "3: 1 to 2" + digits},
        {key + "\"a\"=hex:41,\n", "3: 1 to 2" + digits},
        {key + "\"a\"=hex:41,\\\n\n", "4: 1 to 2" + digits},
        {key + R"("a"=hex:41,\)", "3: the line goes on, but the file ends"},
        {key + "\"a\"=\"good\"\nbad\n", "4: line is neither a key in brackets, nor a value, nor a comment"},
    };
    for (const auto& [text, fault] : cases) {
        EXPECT_EQ(FaultOf(text), fault) << text;
    }
}

TEST(RegistryFile, RefusesWhatIsNoReadableFile) {
    const TemporaryFile file(header);
    std::filesystem::resize_file(file.path, (64U << 20U) + 1);
    EXPECT_EQ(FaultOfFile(file.path), " is longer than 64 MiB");
    EXPECT_EQ(FaultOfFile("/dev/zero"), " is not a regular file");
    EXPECT_EQ(FaultOfFile(testing::TempDir()), " is not a regular file");
    EXPECT_EQ(FaultOfFile(file.path + ".none"), " No such file or directory");
}

TEST(RegistryFile, ReadsLongFilesWhole) {
    std::u16string text = u"Windows Registry Editor Version 5.00\r\n[HKEY_LOCAL_MACHINE\\K]\r\n\"a\"=\"";
    std::string expected;
    for (int count = 0; count < 20000; ++count) {
        text += u'\u00e4';
        expected += "\xc3\xa4";
    }
    const KRegDocument file = Load("\xff\xfe" + Utf16(text + u"\"\r\n[HKEY_LOCAL_MACHINE\\Last]\r\n"));
    EXPECT_EQ(Value(file, "K", "a"), expected + '\0');
    EXPECT_NE(file.Find("Last"), nullptr);
}

TEST(RegistryFile, LiesWhereTheEnvironmentSays) {
    unsetenv("KORVEL_REGISTRY");
    EXPECT_EQ(KRegDocument::ConfiguredPath(), "/etc/korvel/registry.reg");
    setenv("KORVEL_REGISTRY", "", 1);
    EXPECT_EQ(KRegDocument::ConfiguredPath(), "/etc/korvel/registry.reg");
    setenv("KORVEL_REGISTRY", "elsewhere", 1);
    EXPECT_EQ(KRegDocument::ConfiguredPath(), "elsewhere");
    unsetenv("KORVEL_REGISTRY");
}

}  // namespace
}  // namespace Korvel
