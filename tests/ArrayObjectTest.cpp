#include <gmock/gmock.h>

#include <cstdint>
#include <memory>

#include "model/KServer.h"
#include "model/KSnapshot.h"
#include "support/ArrayTest.h"
#include "support/Outcome.h"
#include "support/RecordingLogger.h"

namespace Korvel {
namespace {

using ArrayObjectTest = ArrayTest;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using Lookup = int (KArray::*)(const std::string&, KVolume*&);

const std::string listing =
    "3 Entering KConnection::GetVolumesList\n" + Exchanged("/api/volumes") +
    "3 Entering KConnection::ParseVolumeList\n3 Exiting KConnection::ParseVolumeList with return code 0\n"
    "4 Successfully obtained volume list\n3 Exiting KConnection::GetVolumesList with return code 0\n";

std::string GroupListing(const std::string& group) {
    const std::string path = "/api/consistency_groups/" + group + "/snapshots";
    return "3 Entering KConnection::GetSnapshotsList\n4 URL: " + path + '\n' + Exchanged(path) +
           "3 Entering KConnection::ParseSnapshotList\n3 Exiting KConnection::ParseSnapshotList with return code 0\n"
           "4 Successfully obtained snapshot list\n3 Exiting KConnection::GetSnapshotsList with return code 0\n";
}

std::string Names(KVolume* volume) {
    std::string* id = nullptr;
    std::string name;
    std::string dispName;
    std::string group;
    volume->GetVolumeID(id);
    volume->GetVolumeName(name);
    volume->GetVolumeDispName(dispName);
    volume->GetCgID(group);
    return *id + ',' + name + ',' + dispName + ',' + group;
}

/// The two lookups by one key.
struct LookupCase {
    const char* name;
    const char* argument;
    Lookup plain;
    Lookup fromArray;
    const char* key;
    const char* found;
    std::string requests;  ///< the log between entry and the new volume
    const char* snapshot;  ///< the log of the snapshot that comes with it
    const char* miss;
};

const LookupCase lookups[] = {
    {"GetVolumeByID", "volID", &KArray::GetVolumeByID, &KArray::GetVolumeByIDFromArray, "ieee2",
     "ieee2,vol2,Disk 2,cg2", listing + "4 Found volume matching volume ID ieee2 in the array\n", "",
     "No volume matching id absent found in array ADDRESS"},
    {"GetVolumeByDispName", "volDispName", &KArray::GetVolumeByDispName, &KArray::GetVolumeByDispNameFromArray,
     "Disk 2", "prod2,vol2,Disk 2,cg2", listing, "", "No volume matching display name absent found in array ADDRESS"},
    {"GetVolumeBySnapID", "snapID", &KArray::GetVolumeBySnapID, &KArray::GetVolumeBySnapIDFromArray, "snap2",
     "prod2,vol2,Disk 2,cg2", listing + GroupListing("cg1") + GroupListing("cg2"),
     "3 Entering KSnapshot::KSnapshot()\n3 Exiting KSnapshot::KSnapshot()\n"
     "4 Added snapshot snap2 to the internal snapshot list\n",
     "No volume having a snapshot with id absent found in array ADDRESS"},
};

TEST_F(ArrayObjectTest, LookupsSearchMemoryOrAskTheArray) {
    KVolume other("i", "n", "d", "g");
    for (const LookupCase& lookup : lookups) {
        SCOPED_TRACE(lookup.name);
        KArray fresh(simulator.Address(), simulator.Key());
        TakeRecords();
        Wire();
        KVolume* volume = nullptr;
        const auto lines = [&](const std::string& suffix, const std::string& key, const std::string& between,
                               int status) {
            const std::string name = std::string("KArray::") + lookup.name + suffix + "()";
            return "3 Entering " + name + " with input param " + lookup.argument + ": " + key + '\n' + between +
                   "3 Exiting " + name + " with return code " + std::to_string(status) + '\n';
        };
        EXPECT_EQ((fresh.*lookup.plain)(lookup.key, volume), 2);
        EXPECT_EQ(Records(), lines("", lookup.key, "", 2));
        EXPECT_EQ(Wire(), "");
        EXPECT_EQ(volume, nullptr);

        EXPECT_EQ((fresh.*lookup.fromArray)(lookup.key, volume), 0);
        EXPECT_EQ(Records(), lines("FromArray", lookup.key,
                                   lookup.requests + Lines("KVolume") +
                                       "4 Added volume vol2 to the internal volume list\n" + lookup.snapshot,
                                   0));
        ASSERT_NE(volume, nullptr);
        EXPECT_EQ(Names(volume), lookup.found);

        KVolume* again = nullptr;
        EXPECT_EQ((fresh.*lookup.fromArray)(lookup.key, again), 0);
        EXPECT_NE(again, volume);
        again = nullptr;
        EXPECT_EQ((fresh.*lookup.plain)(lookup.key, again), 0);
        EXPECT_EQ(again, volume) << "the first of two";
        // A miss is told by the caller's pointer: with one set the request's own status comes back.
        KVolume* none = nullptr;
        EXPECT_EQ((fresh.*lookup.fromArray)("absent", none), 2);
        EXPECT_THAT(Records(), HasSubstr("2 " + std::string(lookup.miss) + '\n'));
        KVolume* set = &other;
        EXPECT_EQ((fresh.*lookup.fromArray)("absent", set), 0);
        EXPECT_EQ(set, &other);
        EXPECT_THAT(Records(), Not(HasSubstr(lookup.miss)));

        simulator.Arm({{"kind", "body"}, {"body", "<volumes/>"}, {"path", "/api/volumes"}, {"count", 2}});
        EXPECT_EQ((fresh.*lookup.fromArray)(lookup.key, none), 2);
        EXPECT_EQ((fresh.*lookup.fromArray)(lookup.key, set), 2);
        Answer(503, "");
        EXPECT_EQ(Outcome([&] { return (fresh.*lookup.fromArray)(lookup.key, none); }),
                  "KException: HTTP return code: 503. List volume failed");
        for (const auto& [suffix, operation] : {std::pair{"", lookup.plain}, {"FromArray", lookup.fromArray}}) {
            EXPECT_EQ(Outcome([&, call = operation] { return (fresh.*call)("", none); }),
                      std::string("invalid_argument: KArray::") + lookup.name + suffix + " - Invalid input parameter");
        }
        TakeRecords();
    }
}

TEST_F(ArrayObjectTest, OnlyAGroupWithoutSnapshotsLetsTheSearchGoOn) {
    nlohmann::json state = simulator.State();
    state["snapshots"]["cg1"] = nlohmann::json::array();
    simulator.SetState(0, state);
    KVolume* volume = nullptr;
    EXPECT_EQ(array.GetVolumeBySnapIDFromArray("snap2", volume), 0);
    EXPECT_EQ(volume->IsSnapAvailable("snap2"), 0);
    std::string latest = "old";
    EXPECT_EQ(volume->GetLatestSnapshotID(latest), 0);
    EXPECT_EQ(latest, "");
    Answer(200, "<volumes><volume><name>n</name></volume></volumes>");
    EXPECT_EQ(Outcome([&] { return array.GetVolumeBySnapIDFromArray("snap2", volume); }),
              "invalid_argument: KConnection::GetSnapshotsList - Invalid input argument");
}

TEST_F(ArrayObjectTest, ARecordThatLacksAFieldAddsNothing) {
    Answer(200, "<volumes><volume><ieee-id>i</ieee-id><name>n</name></volume></volumes>");
    KVolume* volume = nullptr;
    EXPECT_EQ(Outcome([&] { return array.GetVolumeByIDFromArray("i", volume); }),
              "invalid_argument: KVolume Constructor: Invalid input argument");
    EXPECT_EQ(volume, nullptr);
    EXPECT_EQ(array.GetVolumeByID("i", volume), 2);
}

TEST_F(ArrayObjectTest, ACloneIsNamedFoundAndKept) {
    KVolume* clone = nullptr;
    EXPECT_EQ(array.CloneVolume("cg1", "snap1", clone), 0);
    ASSERT_NE(clone, nullptr);
    const auto inventory = simulator.State();
    const auto& made = inventory["volumes"].back();
    const std::string name = made["name"];
    const std::string displayName = made["displayName"];
    const std::string group = made["group"];
    EXPECT_EQ(Names(clone), made["ieeeId"].get<std::string>() + ',' + name + ',' + displayName + ',' + group);
    EXPECT_EQ(Wire(),
              "POST /api/consistency_groups/cg1/clone snapshot=snap1&name=snap1_N.clone&timeout=30\n"
              "GET /api/volumes \n");
    const std::string records = Records();
    EXPECT_THAT(records, StartsWith("3 Entering KArray::CloneVolume() with input param cgID: cg1 snapID: snap1\n"
                                    "3 Entering KConnection::CloneVolume for volume snap1\n"));
    EXPECT_THAT(records,
                EndsWith("3 Exiting KConnection::GetVolumeInfoByDispName with return code 0\n"
                         "Korvel.VssProvider 2 Volume clone(" +
                         made["ieeeId"].get<std::string>() + " - " + name + ") created for snapshot(snap1)\n" +
                         Lines("KVolume") + "4 Added clone volume " + name +
                         " to the internal volume list\n3 Exiting KArray::CloneVolume() with return code : 0\n"));

    KVolume* found = nullptr;
    EXPECT_EQ(array.GetVolumeByDispName(displayName, found), 0);
    EXPECT_EQ(found, clone);
    std::string snapID = "snap1";
    EXPECT_EQ(clone->DeleteSnapshot(snapID), 0) << "it belongs to the array";

    // The clone is made, but the array does not list it: nothing is kept and the caller's pointer stays.
    Answer(200, "<clone-cg-response><status>0</status></clone-cg-response>");
    EXPECT_EQ(array.CloneVolume("cg1", "absent", found), 2);
    EXPECT_EQ(found, clone);
    Answer(200, "<none/>");
    EXPECT_EQ(array.CloneVolume("cg1", "snap1", found), 1);
    Wire();
    Answer(200, "<none/>");
    const std::string cut("s\0x", 3);
    EXPECT_EQ(array.CloneVolume("cg1", cut, found), 1);
    EXPECT_EQ(Wire(), "POST /api/consistency_groups/cg1/clone snapshot=" + cut + "&name=s_N.clone&timeout=30\n");
    for (const auto& [cg, snapshot] : {std::pair{"", "s"}, {"g", ""}}) {
        EXPECT_EQ(Outcome([&, g = cg, s = snapshot] { return array.CloneVolume(g, s, found); }),
                  "invalid_argument: KArray::CloneVolume - Invalid input parameter");
    }
}

TEST_F(ArrayObjectTest, VolumesAreMappedUnmappedRolledBackAndDeleted) {
    KVolume* volume = nullptr;
    KVolume* other = nullptr;
    array.AddVolumeToList(nullptr);
    array.GetVolumeByIDFromArray("ieee2", other);
    array.GetVolumeByIDFromArray("ieee1", volume);
    Wire();
    TakeRecords();
    EXPECT_EQ(array.AttachVolume("vol1", "srv1"), 0);
    const std::string attached = Records();
    EXPECT_THAT(attached,
                StartsWith("3 Entering KArray::AttachVolume() with input param volName: vol1 serverID: srv1\n"));
    EXPECT_THAT(attached, EndsWith("2 Volume vol1 successfully mapped to server ID: srv1\n"
                                   "3 Exiting KArray::AttachVolume() with return code : 0\n"));
    EXPECT_THAT(Outcome([&] { return array.DeleteVolume("vol1"); }), StartsWith("KException: Volume vol1 is mapped"));
    EXPECT_EQ(array.GetVolumeByID("ieee1", volume), 0);
    Records();
    EXPECT_EQ(array.DetachVolume("vol1", "srv1"), 0);
    const std::string detached = Records();
    EXPECT_THAT(detached,
                StartsWith("3 Entering KArray::DetachVolume() with input param volName: vol1 serverID: srv1\n"));
    EXPECT_THAT(detached, EndsWith("2 Volume vol1 successfully detached from server ID: srv1\n"
                                   "3 Exiting KArray::DetachVolume() with return code : 0\n"));
    EXPECT_EQ(array.ResyncVolume("snap1", volume), 0);
    const std::string rolledBack = Records();
    EXPECT_THAT(
        rolledBack,
        StartsWith("3 Entering KArray::ResyncVolume()\n3 Entering KConnection::ResyncVolume with snapID snap1\n"));
    EXPECT_THAT(rolledBack, EndsWith("3 Exiting KConnection::ResyncVolume with return code 0\n"
                                     "3 Exiting KArray::ResyncVolume() with return code : 0\n"));
    std::string snapID = "snap1";
    EXPECT_EQ(volume->DeleteSnapshot(snapID), 0);
    Wire();
    KVolume* second = nullptr;
    array.GetVolumeByIDFromArray("ieee1", second);
    Records();
    EXPECT_EQ(array.DeleteVolume("vol1"), 0);
    const std::string deleted = Records();
    EXPECT_THAT(deleted, StartsWith("3 Entering KArray::DeleteVolume() with input param volName: vol1\n"));
    EXPECT_THAT(deleted, EndsWith("2 Volume vol1 successfully deleted in the array\n" + Lines("KVolume", true) +
                                  "3 Exiting KArray::DeleteVolume() with return code : 0\n"));
    EXPECT_EQ(array.GetVolumeByID("ieee1", volume), 0) << "only the first of two is forgotten";
    EXPECT_EQ(volume, second);
    EXPECT_EQ(array.GetVolumeByID("ieee2", volume), 0);
    EXPECT_EQ(volume, other);
    for (const auto& call : {&KArray::AttachVolume, &KArray::DetachVolume}) {
        Answer(200, "<none/>");
        EXPECT_EQ((array.*call)("vol2", "srv1"), 1);
        EXPECT_THAT(Records(), Not(HasSubstr("successfully")));
    }
    Answer(200, "<none/>");
    EXPECT_EQ(array.DeleteVolume("vol2"), 1);
    EXPECT_EQ(array.GetVolumeByID("ieee2", volume), 0);

    KVolume* null = nullptr;
    const std::pair<const char*, std::function<int()>> refusals[] = {
        {"AttachVolume", [&] { return array.AttachVolume("", "s"); }},
        {"AttachVolume", [&] { return array.AttachVolume("v", ""); }},
        {"DetachVolume", [&] { return array.DetachVolume("", "s"); }},
        {"DetachVolume", [&] { return array.DetachVolume("v", ""); }},
        {"DeleteVolume", [&] { return array.DeleteVolume(""); }},
        {"ResyncVolume", [&] { return array.ResyncVolume("s", null); }},
        {"ResyncVolume", [&] { return array.ResyncVolume("", volume); }},
    };
    for (const auto& [name, call] : refusals) {
        EXPECT_EQ(Outcome(call), std::string("invalid_argument: KArray::") + name + " - Invalid input parameter");
    }
}

TEST_F(ArrayObjectTest, ServersAreFoundOrCreated) {
    std::string id = "old";
    EXPECT_EQ(array.GetServerIDByIQN("iqn.a", id), 2);
    EXPECT_EQ(id, "old");
    Records();
    EXPECT_EQ(array.GetServerIDByIQNFromArray("iqn.a", id), 0);
    EXPECT_EQ(id, "srv1");
    EXPECT_THAT(Records(), StartsWith("3 Entering KArray::GetServerIDByIQNFromArray()\n"
                                      "3 Entering KConnection::GetServerInfoByIQN for host iqn iqn.a\n"));
    EXPECT_EQ(array.GetServerIDByIQN("iqn.A", id), 2) << "a miss among known ones";
    EXPECT_EQ(Records(),
              "3 Entering KArray::GetServerIDByIQN()\n3 Exiting KArray::GetServerIDByIQN() with return code : 2\n");
    EXPECT_EQ(id, "srv1");
    Wire();
    // A missing server is created with the address that the listing left, the last server's.
    EXPECT_EQ(array.GetServerIDByIQNFromArray("iqn.b", id), 0);
    EXPECT_EQ(Wire(),
              "GET /api/servers \nPOST /api/servers "
              "display_name=iqn.b&iscsi=10.0.0.9&iqn=iqn.b&ipsec=no&force=no\n");
    EXPECT_THAT(Records(), EndsWith("2 Successfully created server(" + id + ") in the array\n" + Lines("KServer") +
                                    "3 Exiting KArray::GetServerIDByIQNFromArray() with return code : 0\n"));
    std::string known;
    EXPECT_EQ(array.GetServerIDByIQN("iqn.b", known), 0);
    EXPECT_EQ(known, id);

    array.AddServerToList(new KServer("A", "iqn.a", ""));
    EXPECT_EQ(array.GetServerIDByIQN("iqn.a", known), 0);
    EXPECT_EQ(known, "A") << "the last of two";

    const std::string created = "<create-server-response><status>0</status></create-server-response>";
    simulator.Arm({{"kind", "body"}, {"method", "POST"}, {"body", created}});
    EXPECT_EQ(Outcome([&] { return array.GetServerIDByIQNFromArray("iqn.c", id); }),
              "invalid_argument: KServer Constructor: Invalid input argument");
    EXPECT_EQ(id, "");
    simulator.Arm({{"kind", "body"}, {"method", "POST"}, {"body", "<none/>"}});
    EXPECT_EQ(array.GetServerIDByIQNFromArray("iqn.c", id), 1);
    EXPECT_EQ(array.GetServerIDByIQN("iqn.c", id), 2);
    Answer(200, "<servers/>");
    EXPECT_EQ(Outcome([&] { return array.GetServerIDByIQNFromArray("iqn.c", id); }),
              "invalid_argument: KConnection::CreateServer - Invalid input argument");
    EXPECT_EQ(Outcome([&] { return array.GetServerIDByIQN("", id); }),
              "invalid_argument: KArray::GetServerIDByIQN - Invalid input parameter");
    EXPECT_EQ(Outcome([&] { return array.GetServerIDByIQNFromArray("", id); }),
              "invalid_argument: KArray::GetServerIDByIQNFromArray - Invalid input parameter");
}

TEST_F(ArrayObjectTest, SnapshotsAreTakenRecordedAndDeleted) {
    std::string names[] = {"vol1", "vol2", "cg1", "cg2"};
    std::list<std::string> taken;
    EXPECT_EQ(KVolume::CreateSnapshotSet(&array, {&names[0], &names[1]}, {&names[2], &names[3]}, &taken), 0);
    ASSERT_EQ(taken.size(), 2U);
    KVolume* volume = nullptr;
    array.GetVolumeByIDFromArray("ieee1", volume);
    TakeRecords();
    std::string& snapID = taken.front();
    EXPECT_EQ(volume->AddCreatedSnapshot(snapID), 0);
    std::string* id = nullptr;
    volume->GetVolumeID(id);
    const auto number = static_cast<int>(reinterpret_cast<std::uintptr_t>(id->c_str()));
    EXPECT_EQ(Records(), Lines("KSnapshot") + "4 Added snapshot " + snapID +
                             " to the internal snapshot list\n3 Latest snap ID " + snapID + " added for volume " +
                             std::to_string(number) + '\n');
    volume->AddCreatedSnapshot(snapID);
    Answer(200, "<delete-snapshot-response><status>4</status><status-msg>busy</status-msg></delete-snapshot-response>");
    EXPECT_EQ(Outcome([&] { return volume->DeleteSnapshot(snapID); }), "KException: busy");
    TakeRecords();
    EXPECT_EQ(volume->DeleteSnapshot(snapID), 0);
    EXPECT_THAT(Records(),
                EndsWith("3 Exiting KConnection::DeleteSnapshot with return code 0\n" + Lines("KSnapshot", true)));
    EXPECT_EQ(volume->IsSnapAvailable(snapID), 0) << "the second record stays";
    std::string latest;
    volume->GetLatestSnapshotID(latest);
    EXPECT_EQ(latest, snapID);
    Answer(200, "<none/>");
    EXPECT_EQ(volume->DeleteSnapshot(snapID), 1);
    EXPECT_EQ(volume->IsSnapAvailable(snapID), 0);
    Answer(200, "<delete-snapshot-response><status>0</status></delete-snapshot-response>");
    std::string unknown = "unknown";
    EXPECT_EQ(volume->DeleteSnapshot(unknown), 0) << "the array knew it";
    EXPECT_EQ(Outcome([&] { return volume->AddCreatedSnapshot(""); }),
              "invalid_argument: KSnapshot Constructor: Invalid input argument");
}

TEST(ObjectTest, OwnWhatTheyHoldAndSayWhenTheyGo) {
    TakeRecords();
    {
        KArray array("address", "key");
        array.AddServerToList(nullptr);
        array.AddServerToList(new KServer("s", "i", ""));
        array.AddVolumeToList(nullptr);
        auto* volume = new KVolume("i", "n", "d", "g");
        array.AddVolumeToList(volume);
        volume->AddSnapshotToList(nullptr);
        volume->AddSnapshotToList(new KSnapshot("a"));
        EXPECT_EQ(volume->IsSnapAvailable("a"), 0);
        EXPECT_EQ(volume->IsSnapAvailable("A"), 2);
        EXPECT_EQ(volume->IsSnapAvailable("ab"), 2);
        KVolume* found = nullptr;
        EXPECT_EQ(array.GetVolumeByID("i", found), 0);
        std::string id;
        EXPECT_EQ(array.GetServerIDByIQN("i", id), 0);
        EXPECT_EQ(array.GetVolumeBySnapID("a", found), 0);
        EXPECT_THAT(TakeRecords(),
                    StartsWith("3 Entering KArray::KArray() for address\n3 Entering KConnection::KConnection for "
                               "address\n3 Exiting KConnection::KConnection\n3 Exiting KArray::KArray()\n" +
                               Lines("KServer") + Lines("KVolume") + Lines("KSnapshot")));
    }
    EXPECT_EQ(TakeRecords(), "3 Entering KArray::~KArray() for address\n" + Lines("KConnection", true) +
                                 Lines("KServer", true) + "3 Entering KVolume::~KVolume()\n" +
                                 Lines("KSnapshot", true) +
                                 "3 Exiting KVolume::~KVolume()\n3 Exiting KArray::~KArray()\n");
}

TEST(ObjectTest, RefuseEmptyTextsAndCutAtZero) {
    const std::pair<const char*, std::function<void()>> refusals[] = {
        {"KArray", [] { KArray("", "k"); }},
        {"KArray", [] { KArray("a", ""); }},
        {"KConnection", [] { KConnection("a", ""); }},
        {"KVolume", [] { KVolume("", "n", "d", "g"); }},
        {"KVolume", [] { KVolume("i", "", "d", "g"); }},
        {"KVolume", [] { KVolume("i", "n", "", "g"); }},
        {"KVolume", [] { KVolume("i", "n", "d", ""); }},
        {"KServer", [] { KServer("", "i", "a"); }},
        {"KServer", [] { KServer("s", "", "a"); }},
        {"KSnapshot", [] { KSnapshot(""); }},
    };
    for (const auto& [name, construct] : refusals) {
        EXPECT_EQ(Outcome([&, make = construct] {
                      make();
                      return 0;
                  }),
                  std::string("invalid_argument: ") + name + " Constructor: Invalid input argument");
    }
    EXPECT_EQ(*KServer("s", "i", "").spareString, "");
    const auto withZero = [](const char* text) { return text + std::string("\0x", 2); };
    auto* volume = new KVolume("i", withZero("n"), withZero("d"), withZero("g"));
    KArray array("a", "k");
    array.AddVolumeToList(volume);
    array.AddServerToList(new KServer(withZero("s"), withZero("q"), ""));
    EXPECT_EQ(Names(volume), "i,n,d,g");
    std::string text;
    EXPECT_EQ(volume->SetLatestSnapshotID(withZero("l")), 0);
    EXPECT_EQ(volume->GetLatestSnapshotID(text), 0);
    EXPECT_EQ(text, "l");
    EXPECT_EQ(array.GetVolumeByDispName("d", volume), 0);
    EXPECT_EQ(array.GetVolumeByDispName(withZero("d"), volume), 2);
    EXPECT_EQ(array.GetServerIDByIQN("q", text), 0);
    EXPECT_EQ(text, "s");
}

/// An object whose destructor never runs: a copy of it frees what it owns.
template <typename Object>
union Undestroyed {
    template <typename... Arguments>
    explicit Undestroyed(const Arguments&... arguments) : object(arguments...) {}
    Undestroyed(const Undestroyed&) = delete;
    Undestroyed& operator=(const Undestroyed&) = delete;
    ~Undestroyed() {}

    Object object;
};

TEST(ObjectTest, CopiesShareWhatTheyOwn) {
    KArray array("127.0.0.1:1", "k");
    auto* volume = new KVolume("i", "n", "d", "g");
    array.AddVolumeToList(volume);
    array.AddServerToList(new KServer("s", "q", ""));
    volume->SetArray(&array);
    volume->AddCreatedSnapshot("snap");
    const Undestroyed<KArray> spare(std::string("b"), std::string("k"));
    const Undestroyed<KVolume> spareVolume("i2", "n2", "d2", "g2");
    TakeRecords();
    {
        KArray copy(array);
        KVolume volumeCopy(*volume);
        for (int round = 0; round < 2; ++round) {
            std::string *own = nullptr, *shared = nullptr;
            KConnection *ownConnection = nullptr, *sharedConnection = nullptr;
            EXPECT_EQ(array.GetIPAddress(own) + copy.GetIPAddress(shared), 0);
            EXPECT_EQ(own, shared);
            EXPECT_EQ(array.GetConnection(ownConnection) + copy.GetConnection(sharedConnection), 0);
            EXPECT_EQ(ownConnection, sharedConnection);
            KVolume* found = nullptr;
            EXPECT_EQ(copy.GetVolumeByID("i", found), 0);
            EXPECT_EQ(found, volume);
            std::string text;
            EXPECT_EQ(copy.GetServerIDByIQN("q", text), 0);
            EXPECT_EQ(volume->GetVolumeID(own) + volumeCopy.GetVolumeID(shared), 0);
            EXPECT_EQ(own, shared);
            EXPECT_EQ(volume->GetCgIDPtr(own) + volumeCopy.GetCgIDPtr(shared), 0);
            EXPECT_EQ(own, shared);
            EXPECT_EQ(*own, "g");
            EXPECT_EQ(Names(&volumeCopy), "i,n,d,g");
            EXPECT_EQ(volumeCopy.GetLatestSnapshotID(text), 0);
            EXPECT_EQ(text, "snap");
            EXPECT_EQ(volumeCopy.IsSnapAvailable(text), 0);
            EXPECT_EQ(Outcome([&] { return volumeCopy.DeleteSnapshot(text); }),
                      "KException: Failed to perform curl action");
            copy = spare.object;
            volumeCopy = spareVolume.object;
            EXPECT_EQ(copy.GetVolumeByID("i", found), 2);
            EXPECT_EQ(Names(&volumeCopy), "i2,n2,d2,g2");
            if (round == 0) {
                copy = array;
                volumeCopy.SetArray(nullptr);
                volumeCopy = *volume;
            }
        }
        TakeRecords();
    }
    EXPECT_EQ(TakeRecords(), Lines("KVolume", true) + "3 Entering KArray::~KArray() for b\n" +
                                 Lines("KConnection", true) + "3 Exiting KArray::~KArray()\n");
    const KException failure("text");
    KException copy(failure);
    EXPECT_STREQ(copy.ErrorText(), "text");
    copy = KException("other");
    EXPECT_STREQ(copy.ErrorText(), "other");
}

}  // namespace
}  // namespace Korvel
