#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <memory>

#include "foundation/KLimits.h"
#include "foundation/Utilities.h"
#include "foundation/registry/KRegistryKey.h"
#include "model/KorvelAccessLibrary.h"
#include "support/OpenDescriptors.h"
#include "support/RecordingLogger.h"
#include "support/TestRegistry.h"

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#endif

namespace Korvel {
namespace {

std::string Addresses(KAccessLayer& layer) {
    std::list<KArray*> arrays{nullptr};
    EXPECT_EQ(layer.GetArrays(arrays), 0);
    std::string addresses;
    for (KArray* array : arrays) {
        std::string* address = nullptr;
        array->GetIPAddress(address);
        addresses += *address + ' ';
    }
    return addresses;
}

class AccessLayerTest : public testing::Test {
protected:
    AccessLayerTest() { TakeRecords(); }

    TestRegistry registry;
};

const std::string listed =
    "3 Entering Utilities::GetArrayIPList()\n3 Exiting Utilities::GetArrayIPList() with return code 0\n";

std::string Added(const std::string& address, const std::string& key) {
    return "3 Entering Utilities::GetArrayConfigData()\n"
           "3 Exiting Utilities::GetArrayConfigData() with return code 0\n2 Array IP: " +
           address + " AccessKey: " + key + "\n3 Entering KArray::KArray() for " + address +
           "\n3 Entering KConnection::KConnection for " + address +
           "\n3 Exiting KConnection::KConnection\n3 Exiting KArray::KArray()\n";
}

TEST_F(AccessLayerTest, WithoutARootKeyDiscoveryFails) {
    KAccessLayer layer;
    EXPECT_EQ(TakeRecords(), "3 Entering KAccessLayer::KAccessLayer()\n3 Exiting KAccessLayer::KAccessLayer()\n");
    EXPECT_EQ(layer.DiscoverArrays(), 1);
    EXPECT_EQ(TakeRecords(),
              "3 Entering KAccessLayer::DiscoverArrays()\n3 Entering Utilities::GetArrayIPList()\n"
              "0 std::exception\n0 std::exception\n3 Exiting KAccessLayer::DiscoverArrays()\n");
    registry.AddRoot();
    EXPECT_EQ(layer.DiscoverArrays(), 0);
    EXPECT_EQ(TakeRecords(),
              "3 Entering KAccessLayer::DiscoverArrays()\n3 Entering Utilities::GetArrayIPList()\n"
              "2 No Subkeys found\n3 Exiting Utilities::GetArrayIPList() with return code 0\n"
              "3 Exiting KAccessLayer::DiscoverArrays()\n");
    EXPECT_EQ(Addresses(layer), "");
}

// Each successful listing leaves its key open: run apart from the others, with the leak named to the sanitizer.
class KeptKeyTest : public AccessLayerTest {};

TEST_F(KeptKeyTest, RefreshAddsWhatIsNewAndDiscoveryAddsAll) {
    KAccessLayer layer;
    registry.SetText("10.0.0.2", "AccessKey", "k2");
    registry.SetText("10.0.0.3", "accesskey", "k3");
    TakeRecords();
    EXPECT_EQ(layer.DiscoverArrays(), 0);
    EXPECT_EQ(TakeRecords(), "3 Entering KAccessLayer::DiscoverArrays()\n" + listed + Added("10.0.0.2", "k2") +
                                 Added("10.0.0.3", "k3") + "3 Exiting KAccessLayer::DiscoverArrays()\n");
    registry.Remove("10.0.0.2");
    registry.SetText("10.0.0.30", "AccessKey", "k30");
    EXPECT_EQ(layer.Refresh(), 0);
    EXPECT_EQ(TakeRecords(), "3 Entering KAccessLayer::Refresh()\n" + listed + "2 New arrayIP found in the registry\n" +
                                 Added("10.0.0.30", "k30") + "3 Exiting KAccessLayer::Refresh()\n");
    EXPECT_EQ(layer.Refresh(), 0);
    EXPECT_EQ(Addresses(layer), "10.0.0.2 10.0.0.3 10.0.0.30 ");
    EXPECT_EQ(layer.DiscoverArrays(), 0);
    EXPECT_EQ(Addresses(layer), "10.0.0.2 10.0.0.3 10.0.0.30 10.0.0.3 10.0.0.30 ");
}

TEST_F(KeptKeyTest, AnArrayWithoutAUsableKeyEndsTheDiscovery) {
    registry.SetText("a", "AccessKey", "k");
    registry.AddArray("b");
    registry.SetText("c", "AccessKey", "k");
    KAccessLayer layer;
    TakeRecords();
    EXPECT_EQ(layer.DiscoverArrays(), 1);
    EXPECT_EQ(TakeRecords(), "3 Entering KAccessLayer::DiscoverArrays()\n" + listed + Added("a", "k") +
                                 "3 Entering Utilities::GetArrayConfigData()\n0 std::exception\n0 std::exception\n"
                                 "3 Exiting KAccessLayer::DiscoverArrays()\n");
    registry.SetText("b", "AccessKey", "");
    EXPECT_EQ(layer.Refresh(), 1);
    EXPECT_THAT(TakeRecords(),
                testing::EndsWith("2 Array IP: b AccessKey: \n3 Entering KArray::KArray() for b\n"
                                  "0 KArray Constructor: Invalid input argument\n3 Exiting KAccessLayer::Refresh()\n"));
    EXPECT_EQ(Addresses(layer), "a ");
}

TEST_F(KeptKeyTest, NamesAndValuesFitOrFail) {
    std::vector<std::string> addresses{"kept"};
    const std::string longest(KSubkeyNameCapacity - 1, 'a');
    registry.AddArray(longest);
    EXPECT_EQ(Utilities::GetArrayIPList(addresses), 0);
    EXPECT_EQ(addresses, (std::vector<std::string>{"kept", longest}));

    const std::string fits(KMaxAddressLength, 'b');
    registry.SetBytes(fits, "AccessKey", 3, std::vector<unsigned char>(KMaxStoredValueSize, 'k'));
    std::string value = "old";
    EXPECT_EQ(Utilities::GetArrayConfigData(fits, "AccessKey", value), 0);
    EXPECT_EQ(value, std::string(KMaxStoredValueSize, 'k'));
    registry.SetBytes(fits, "AccessKey", 1, {'a', 0, 'b'});
    EXPECT_EQ(Utilities::GetArrayConfigData(fits, "AccessKey", value), 0);
    EXPECT_EQ(value, "a");
    registry.SetBytes(fits, "AccessKey", 3, std::vector<unsigned char>(KMaxStoredValueSize + 1, 'k'));
    EXPECT_THROW(Utilities::GetArrayConfigData(fits, "AccessKey", value), KException);
    EXPECT_THROW(Utilities::GetArrayConfigData("absent", "AccessKey", value), KException);
    EXPECT_EQ(value, "a");
    registry.SetBytes(fits, "AccessKey", 3, {'k'});
    KRegistryKey key;
    unsigned char stored[KMaxStoredValueSize];
    std::size_t size = sizeof stored;
    ASSERT_TRUE(key.Open((R"(software\KORVEL\hwprovider\)" + fits).c_str(), KRegistryKey::Access::QueryValue));
    EXPECT_TRUE(key.ReadValue("accesskey", stored, size));
    EXPECT_EQ(size, 1U);
#if !defined(_WIN32)  // the registry itself stores no longer name, and no file
    registry.AddArray(std::string(KSubkeyNameCapacity, 'm'));
    EXPECT_THROW(Utilities::GetArrayIPList(addresses), KException);
    std::ofstream(std::getenv("KORVEL_REGISTRY"), std::ios::app) << "no value\n";
    EXPECT_THROW(Utilities::GetArrayConfigData(fits, "AccessKey", value), KException);
#endif
}

#if defined(_WIN32)  // elsewhere an open key is memory, and the leak sanitizer's to count

/// @return how many more handles the process has after a thousand calls, whether they fail or not
template <typename Call>
unsigned long HandlesLeftBy(Call call) {
    const unsigned long before = Testing::OpenDescriptors(16384);
    for (int i = 0; i < 1000; ++i) {
        try {
            call();
        } catch (const KException&) {
        }
    }
    TakeRecords();
    return Testing::OpenDescriptors(16384) - before;
}

TEST_F(KeptKeyTest, OnlyASuccessfulListingLeavesItsKeyOpen) {
    std::vector<std::string> addresses;
    std::string value;
    const auto list = [&] { Utilities::GetArrayIPList(addresses); };
    const auto readOf = [&](const char* address, const char* name) {
        return [&, address, name] { Utilities::GetArrayConfigData(address, name, value); };
    };
    EXPECT_EQ(HandlesLeftBy(list), 0) << "no root key";
    registry.AddRoot();
    EXPECT_EQ(HandlesLeftBy(list), 0) << "no subkeys";
    registry.SetText("a", "AccessKey", "k");
    EXPECT_EQ(HandlesLeftBy(readOf("b", "AccessKey")), 0);
    EXPECT_EQ(HandlesLeftBy(readOf("a", "absent")), 0);
    EXPECT_EQ(HandlesLeftBy(readOf("a", "AccessKey")), 0);
    EXPECT_EQ(HandlesLeftBy(list), 1000);
}

#endif

TEST_F(KeptKeyTest, CopiesShareTheirArrays) {
    registry.SetText("a", "AccessKey", "k");
    KAccessLayer layer;
    ASSERT_EQ(layer.DiscoverArrays(), 0);
    std::list<KArray*> own;
    std::list<KArray*> shared;
    layer.GetArrays(own);
    TakeRecords();
    {
        KAccessLayer copy(layer);
        KAccessLayer& same = copy;
        copy = same;
        copy.GetArrays(shared);
        EXPECT_EQ(shared, own);
        EXPECT_EQ(TakeRecords(), "");
        copy = KAccessLayer();  // or its destructor would take the arrays along
        EXPECT_EQ(Addresses(copy), "");
        copy = layer;
        copy.GetArrays(shared);
        EXPECT_EQ(shared, own);
        copy = KAccessLayer();
        EXPECT_THAT(
            TakeRecords(),
            testing::EndsWith("3 Entering KAccessLayer::~KAccessLayer()\n3 Exiting KAccessLayer::~KAccessLayer()\n"));
    }
    EXPECT_EQ(Addresses(layer), "a ");
}

TEST(GlobalStateTest, IsPreparedAndUndoneWithATrace) {
    TakeRecords();
    KAccessLayer::GlobalInit();
    EXPECT_EQ(TakeRecords(),
              "3 Entering KAccessLayer::GlobalInit()\n3 Entering KConnection::GlobalInit\n"
              "3 Exiting KConnection::GlobalInit\n3 Exiting KAccessLayer::GlobalInit()\n");
    KAccessLayer::GlobalCleanup();
    EXPECT_EQ(TakeRecords(),
              "3 Entering KAccessLayer::GlobalCleanup()\n3 Entering KConnection::GlobalCleanup\n"
              "3 Exiting KConnection::GlobalCleanup\n3 Exiting KAccessLayer::GlobalCleanup()\n");
}

}  // namespace
}  // namespace Korvel
