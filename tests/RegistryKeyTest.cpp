#include "foundation/registry/KRegistryKey.h"

#include <gtest/gtest.h>

#include <fstream>
#include <vector>

#include "foundation/KLimits.h"
#include "support/TestRegistry.h"

namespace Korvel {
namespace {

const char* const root = R"(SOFTWARE\Korvel\HwProvider)";

class RegistryKey : public testing::Test {
protected:
    /// The value's bytes as read into a buffer of the library's size, or "(none)".
    static std::string Read(const std::string& path, const char* valueName) {
        KRegistryKey key;
        unsigned char buffer[KMaxStoredValueSize];
        std::size_t size = sizeof buffer;
        const bool read =
            key.Open(path.c_str(), KRegistryKey::Access::QueryValue) && key.ReadValue(valueName, buffer, size);
        return read ? std::string(buffer, buffer + size) : "(none)";
    }

    TestRegistry registry;
    KRegistryKey key;
};

TEST_F(RegistryKey, OpensWhatIsThere) {
    EXPECT_FALSE(key.Open(root, KRegistryKey::Access::Read));
    registry.AddRoot();
    unsigned long count = 9;
    ASSERT_TRUE(key.Open(root, KRegistryKey::Access::Read));
    EXPECT_TRUE(key.CountSubkeys(count));
    EXPECT_EQ(count, 0U);

    registry.AddArray("10.0.0.21");
    const std::pair<const char*, bool> paths[] = {
        {R"(software\KORVEL\hwprovider\10.0.0.21)", true},
        {R"(SOFTWARE\Korvel\HwProvider\)", true},
        {R"(SOFTWARE\Korvel\\HwProvider)", true},
        {"", true},
        {R"(\SOFTWARE\Korvel\HwProvider)", false},
        {R"(SOFTWARE\Korvel\HwProvider\10.0.0.2)", false},
        {R"(SOFTWARE\Korvel\HwProvider\10.0.0.21\..)", false},
        {"SOFTWARE/Korvel/HwProvider", false},
    };
    for (const auto& [path, opens] : paths) {
        EXPECT_EQ(KRegistryKey().Open(path, KRegistryKey::Access::QueryValue), opens) << path;
    }
    registry.Remove("10.0.0.21");
    EXPECT_FALSE(key.Open((std::string(root) + R"(\10.0.0.21)").c_str(), KRegistryKey::Access::Read));
    EXPECT_TRUE(key.CountSubkeys(count)) << "a failed open leaves the key as it was";
}

TEST_F(RegistryKey, ListsSubkeysUpToTheLimit) {
    const std::vector<std::string> addresses = {"10.0.0.21", "Array-b", std::string(KSubkeyNameCapacity - 1, 'n')};
    for (const std::string& address : addresses) {
        registry.AddArray(address);
    }
    ASSERT_TRUE(key.Open(root, KRegistryKey::Access::Read));
    unsigned long count = 0;
    ASSERT_TRUE(key.CountSubkeys(count));
    ASSERT_EQ(count, 3U);
    char name[KSubkeyNameCapacity];
    for (unsigned long index = 0; index < count; ++index) {
        ASSERT_TRUE(key.ReadSubkeyName(index, name, sizeof name));
        EXPECT_EQ(name, addresses[index]);
    }
    EXPECT_FALSE(key.ReadSubkeyName(2, name, sizeof name - 1)) << "no room for the terminating zero";
    EXPECT_FALSE(key.ReadSubkeyName(3, name, sizeof name));
#if !defined(_WIN32)  // The registry itself stores no longer name.
    registry.AddArray(std::string(KSubkeyNameCapacity, 'm'));
    ASSERT_TRUE(key.Open(root, KRegistryKey::Access::Read));
    EXPECT_TRUE(key.ReadSubkeyName(2, name, sizeof name));
    EXPECT_FALSE(key.ReadSubkeyName(3, name, sizeof name));
#endif
    key.Close();
    EXPECT_FALSE(key.CountSubkeys(count));
    EXPECT_FALSE(key.ReadSubkeyName(0, name, sizeof name));
}

TEST_F(RegistryKey, ReadsValuesUpToTheLimit) {
    const std::string array = std::string(root) + R"(\10.0.0.21)";
    registry.SetText("10.0.0.21", "AccessKey", R"(a "key" with a \)");
    EXPECT_EQ(Read(array, "accesskey"), std::string(R"(a "key" with a \)") + '\0');
    EXPECT_EQ(Read(array, "AccessKe"), "(none)");
    EXPECT_EQ(Read(array, ""), "(none)") << "no default value";
    EXPECT_EQ(Read(root, "AccessKey"), "(none)");

    registry.SetText("10.0.0.21", "AccessKey", std::string(KMaxStoredValueSize - 1, 'k'));
    EXPECT_EQ(Read(array, "AccessKey").size(), KMaxStoredValueSize);
    registry.SetText("10.0.0.21", "AccessKey", std::string(KMaxStoredValueSize, 'k'));
    EXPECT_EQ(Read(array, "AccessKey"), "(none)");
    for (const unsigned long type : {1UL, 3UL, 4711UL}) {
        registry.SetBytes("10.0.0.21", "AccessKey", type, std::vector<unsigned char>(KMaxStoredValueSize, 'k'));
        EXPECT_EQ(Read(array, "AccessKey"), std::string(KMaxStoredValueSize, 'k')) << type;
        registry.SetBytes("10.0.0.21", "AccessKey", type, std::vector<unsigned char>(KMaxStoredValueSize + 1, 'k'));
        EXPECT_EQ(Read(array, "AccessKey"), "(none)") << type;
    }
    registry.SetBytes("10.0.0.21", "AccessKey", 3, {});
    EXPECT_EQ(Read(array, "AccessKey"), "");
}

#if !defined(_WIN32)
TEST_F(RegistryKey, OpensNothingOfAMalformedFile) {
    registry.AddRoot();
    ASSERT_TRUE(key.Open(root, KRegistryKey::Access::Read));
    std::ofstream(std::getenv("KORVEL_REGISTRY"), std::ios::app) << "no value\n";
    EXPECT_FALSE(key.Open(root, KRegistryKey::Access::Read));
    EXPECT_FALSE(key.Open("", KRegistryKey::Access::Read));
}
#else
TEST_F(RegistryKey, OpensNothingOfAMalformedFile) {
    GTEST_SKIP() << "there is no registry file on Windows";
}
#endif

}  // namespace
}  // namespace Korvel
