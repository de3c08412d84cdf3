#include <gtest/gtest.h>

#include "foundation/KLimits.h"
#include "foundation/Utilities.h"
#include "rest/KConnection.h"
#include "support/Outcome.h"

namespace Korvel {
namespace {

int ListVolumes(const std::string& address, const std::string& key) {
    std::string reply;
    return KConnection(address, key).ListVolumes(reply);
}

int ReadKey(const std::string& address) {
    std::string value;
    return Utilities::GetArrayConfigData(address, KAccessKeyValue, value);
}

// What the documents tell callers.
static_assert(KMaxUrlLength == 255 && KMaxAccessKeyLength == 241 && KMaxAddressLength == 232);
static_assert(KRegistryRootKey == R"(SOFTWARE\Korvel\HwProvider)" && KMaxStoredValueSize == 256);

TEST(OverflowTest, WhatJustFitsIsWhole) {
    EXPECT_EQ(Outcome([] { return ListVolumes("127.0.0.1:1", std::string(KMaxAccessKeyLength, 'k')); }),
              "KException: Failed to perform curl action");
    EXPECT_EQ(Outcome([] { return ReadKey(std::string(KMaxAddressLength, 'a')); }),
              "KException: Failed to open registry key");
}

// The line names the capacity and the format and, since the arguments may hold a key, nothing else.
TEST(OverflowDeathTest, WhatDoesNotFitEndsTheProcess) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(ListVolumes("a", std::string(KMaxAccessKeyLength + 1, 'k')),
                 "256 characters, format \"X-Access-Key: %s\"");
    EXPECT_DEATH(ListVolumes(std::string(KMaxUrlLength, 'a'), "k"), "256 characters, format \"https://%s%s\"");
    EXPECT_DEATH(ReadKey(std::string(KMaxAddressLength + 1, 'a')), "260 characters, format .*HwProvider");
}

}  // namespace
}  // namespace Korvel
