#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <iterator>
#include <vector>

#include "support/ArrayTest.h"
#include "support/Outcome.h"
#include "support/RecordingLogger.h"

namespace Korvel {
namespace {

using ConnectionTest = ArrayTest;

/// A command with arguments that fit, and all that is particular to it.
struct CommandCase {
    const char* name;
    std::function<int(KConnection&, const std::string&)> call;  ///< with its first argument
    const char* first;
    const char* entry;  ///< behind the name in the entry line
    const char* method;
    const char* path;
    const char* body;
    const char* element;
    int action;
    const char* failure;
};

std::string output;  // the out-argument of the commands that have one
std::list<std::string> snapNames;

int CreateSet(KConnection& connection, std::string first) {
    std::string names[] = {"v2", "surplus", "g1", "g2"};
    return connection.CreateSnapshotSet({&first, &names[0], &names[1]}, {&names[2], &names[3]}, &snapNames);
}

const CommandCase commands[] = {
    {"DeleteSnapshot", [](KConnection& c, const std::string& a) { return c.DeleteSnapshot(a); }, "s/1",
     " for snapshot s/1", "DELETE", "/api/snapshots/s/1", "", "delete-snapshot-response", 1, "Delete snapshot"},
    {"CreateServer", [](KConnection& c, const std::string& a) { return c.CreateServer(a, "iqn", "ip", output); },
     "host", " for host iqn iqn", "POST", "/api/servers", "display_name=host&iscsi=ip&iqn=iqn&ipsec=no&force=no",
     "create-server-response", 2, "Create server"},
    {"CloneVolume", [](KConnection& c, const std::string& a) { return c.CloneVolume(a, "snap", "new", output); }, "cg",
     " for volume snap", "POST", "/api/consistency_groups/cg/clone", "snapshot=snap&name=new&timeout=30",
     "clone-cg-response", 3, "Clone volume"},
    {"AttachVolume", [](KConnection& c, const std::string& a) { return c.AttachVolume(a, "srv"); }, "v%&",
     " for volName v%&", "POST", "/api/servers/srv/volumes", "id=srv&volume_name=v%&&readonly=no&force=no",
     "attach-volume-response", 4, "Attach volume"},
    {"DetachVolume", [](KConnection& c, const std::string& a) { return c.DetachVolume(a, "srv"); }, "vol",
     " for volName vol", "POST", "/api/volumes/vol/detach", "servers=srv", "detach-volume-response", 5,
     "Detach volume"},
    {"DeleteVolume", [](KConnection& c, const std::string& a) { return c.DeleteVolume(a); }, "vol", " for volName vol",
     "DELETE", "/api/volumes/vol", "", "delete-volume-response", 6, "Delete volume"},
    {"ResyncVolume", [](KConnection& c, const std::string& a) { return c.ResyncVolume(a, "cg"); }, "snap",
     " with snapID snap", "POST", "/api/consistency_groups/cg/rollback", "snapname=snap&timeout=30",
     "clone-cg-response", 7, "Resync volume"},
    {"CreateSnapshotSet", [](KConnection& c, const std::string& a) { return CreateSet(c, a); }, "vol",
     " for volumes vol v2 surplus ", "POST", "/api/snapshots/snapshots_set",
     "snapshots_set_1_name=snap_N_vol&snapshots_set_1_cg=g1&snapshots_set_2_name=snap_N_v2&snapshots_set_2_cg=g2",
     "create-snapshot-set-response", 0, "Create snapshot set"},
};

std::string Entry(const CommandCase& command) {
    return std::string("3 Entering KConnection::") + command.name + command.entry + '\n';
}

std::string Exit(const CommandCase& command, int status) {
    return std::string("3 Exiting KConnection::") + command.name + " with return code " + std::to_string(status) + '\n';
}

/// The log of a command up to its response code.
std::string Begun(const CommandCase& command, int code = 200) {
    return Entry(command) + "4 URL: " + command.path + '\n' + Exchanged(command.path, code);
}

TEST_F(ConnectionTest, CommandsAreSentAndJudged) {
    for (const CommandCase& command : commands) {
        SCOPED_TRACE(command.name);
        const std::string element = command.element;
        const auto call = [&] { return Outcome([&] { return command.call(*connection, command.first); }); };
        const auto read = [&](const std::string& fields, const std::string& end) {
            return Begun(command) + "3 Entering KConnection::ParseResponseXML with xPathID: //" + element +
                   " CommandAction: " + std::to_string(command.action) + '\n' + fields + end;
        };
        const std::string readerExit = "3 Exiting KConnection::ParseResponseXML with return code 0\n";
        const bool namesServer = command.action == 2;
        output = "old";

        Answer(200, '<' + element + "><status>0</status><status-msg>done</status-msg><server-name>new</server-name></" +
                        element + '>');
        EXPECT_EQ(call(), "0");
        EXPECT_EQ(Wire(), std::string(command.method) + ' ' + command.path + ' ' + command.body + '\n');
        EXPECT_EQ(Records(),
                  read(std::string("4 status: 0\n4 status-msg: done\n") + (namesServer ? "4 server-name: new\n" : ""),
                       readerExit + Exit(command, 0)));
        EXPECT_EQ(output, namesServer ? "new" : command.action == 3 ? "" : "old");
        output = "old";

        Answer(200, '<' + element + "><status> 0</status><status-msg>It is %s full</status-msg></" + element + '>');
        EXPECT_EQ(call(), "KException: It is %s full");
        EXPECT_EQ(Records(), read("4 status:  0\n4 status-msg: It is %s full\n", readerExit + "0 std::exception\n"));

        Answer(200, "<error/>");
        EXPECT_EQ(call(), "1");
        EXPECT_EQ(Records(), read("", "2 Response not found. Error Condition\n" + Exit(command, 1)));

        Answer(200, "no xml");
        EXPECT_EQ(call(), "KException: Failed to open the xml document");
        EXPECT_EQ(Records(), read("", "0 std::exception\n0 std::exception\n"));

        Answer(204, "");
        EXPECT_EQ(call(), std::string("KException: HTTP return code: 204. ") + command.failure + " failed");
        EXPECT_EQ(Records(), Begun(command, 204) + "0 std::exception\n");
        Wire();

        const std::string refusal = std::string("KConnection::") + command.name + " - Invalid input argument";
        EXPECT_EQ(Outcome([&] { return command.call(*connection, ""); }), "invalid_argument: " + refusal);
        EXPECT_THAT(Records(), testing::EndsWith("\n0 " + refusal + '\n'));
        EXPECT_EQ(Wire(), "");
        EXPECT_EQ(output, "old");
    }
}

TEST_F(ConnectionTest, CommandsRefuseEachMissingArgument) {
    std::string name = "v";
    std::string empty;
    std::list<std::string> taken;
    const auto takeSet = [&](std::string* volume, std::string* group) {
        return connection->CreateSnapshotSet({&name, volume}, {&name, group}, &taken);
    };
    const std::pair<const char*, std::function<int()>> refusals[] = {
        {"CreateSnapshotSet", [&] { return takeSet(&empty, &name); }},
        {"CreateSnapshotSet", [&] { return takeSet(nullptr, &name); }},
        {"CreateSnapshotSet", [&] { return takeSet(&name, &empty); }},
        {"CreateSnapshotSet", [&] { return takeSet(&name, nullptr); }},
        {"CloneVolume", [&] { return connection->CloneVolume("g", "", "c", output); }},
        {"CloneVolume", [&] { return connection->CloneVolume("g", "s", "", output); }},
        {"CreateServer", [&] { return connection->CreateServer("h", "", "a", output); }},
        {"CreateServer", [&] { return connection->CreateServer("h", "i", "", output); }},
        {"AttachVolume", [&] { return connection->AttachVolume("v", ""); }},
        {"DetachVolume", [&] { return connection->DetachVolume("v", ""); }},
        {"ResyncVolume", [&] { return connection->ResyncVolume("s", ""); }},
    };
    for (const auto& [command, call] : refusals) {
        EXPECT_EQ(Outcome(call),
                  std::string("invalid_argument: KConnection::") + command + " - Invalid input argument");
    }
    EXPECT_EQ(Wire(), "");
}

TEST_F(ConnectionTest, ASnapshotSetEndsAtTheShorterListAndTheFirstZeroByte) {
    std::string name("v\0x", 3);
    std::string group = "g";
    Answer(200,
           "<create-snapshot-set-response><status>0</status><snapshots><snapshot>a</snapshot><snapshot>b</snapshot>"
           "</snapshots></create-snapshot-set-response>",
           2);
    std::list<std::string> names{"old"};
    EXPECT_EQ(connection->CreateSnapshotSet({&name}, {&group, &group}, &names), 0);
    EXPECT_EQ(names, (std::list<std::string>{"old", "a", "b"}));
    EXPECT_EQ(connection->CreateSnapshotSet({}, {&group}, &names), 0);
    EXPECT_EQ(Wire(),
              "POST /api/snapshots/snapshots_set snapshots_set_1_name=snap_N_v\n"
              "POST /api/snapshots/snapshots_set \n");
}

TEST_F(ConnectionTest, ANameTakesTheFirstNumberOfTheSecondAndTheCallerALaterOne) {
    std::string name = "v";
    std::string group = "cg1";
    const std::time_t before = std::time(nullptr);
    ASSERT_EQ(connection->CreateSnapshotSet({&name}, {&group}, &snapNames), 0);
    const int next = std::rand();
    const std::time_t after = std::time(nullptr);
    const std::string body = simulator.Journal().back().body;
    bool known = false;
    for (std::time_t second = before; second <= after; ++second) {
        std::srand(static_cast<unsigned int>(second));
        const std::string number = std::to_string(std::rand() % 1000000 + 1);
        const bool named = body.find("_name=snap_" + number + "_v&") != std::string::npos;
        for (int draw = 0; draw < 8; ++draw) {  // the system's own libraries may have drawn in between
            known = (std::rand() == next && named) || known;
        }
    }
    EXPECT_TRUE(known) << body;
}

TEST_F(ConnectionTest, AHandleIsPreparedForOneExchange) {
    CURL* handle = nullptr;
    curl_slist* headers = nullptr;
    ASSERT_EQ(connection->InitializeCurl(handle, "/api/servers", headers), 0);
    std::string reply;
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, nullptr);
    EXPECT_EQ(curl_easy_perform(handle), CURLE_WRITE_ERROR) << "a reply that has no place";
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &reply);
    EXPECT_EQ(curl_easy_perform(handle), CURLE_OK);
    EXPECT_THAT(reply, testing::HasSubstr("srv1"));
    curl_slist_free_all(headers);
    curl_easy_cleanup(handle);
}

// The certificate names the simulator's address, and nobody vouches for it.
TEST_F(ConnectionTest, NeitherTheCertificateNorItsNameIsChecked) {
    const std::string address = "localhost" + simulator.Address().substr(simulator.Address().find(':'));
    std::string reply;
    EXPECT_EQ(KConnection(address, simulator.Key()).ListServers(reply), 0);
    EXPECT_EQ(KConnection::ValidateArray(address, simulator.Key()), 0);
}

#if !defined(_WIN32)
TEST_F(ConnectionTest, WhatARequestHoldsIsReleasedBeforeItsLastLine) {
    const auto count = [] {
        const std::filesystem::directory_iterator descriptors("/proc/self/fd");
        return std::distance(begin(descriptors), end(descriptors));
    };
    std::list<KVolumeRecord> records;
    std::list<KSnapshotRecord> snapshots;
    std::string reply;
    const std::pair<int, std::function<int()>> calls[] = {
        {200, [&] { return connection->GetVolumesList(&records); }},
        {500, [&] { return connection->GetVolumesList(&records); }},
        {200, [&] { return connection->ListDrives(simulator.Address(), simulator.Key()); }},
        {500, [&] { return connection->ListDrives(simulator.Address(), simulator.Key()); }},
        {500, [&] { return connection->ListServers(reply); }},
        {500, [&] { return connection->GetSnapshotsList("g", &snapshots); }},
        {500, [&] { return connection->DeleteVolume("v"); }},
    };
    for (const auto& [status, call] : calls) {
        Answer(status, "<volumes><volume/></volumes>");
        std::vector<std::ptrdiff_t> open{count()};
        WatchRecords([&] { open.push_back(count()); });
        static_cast<void>(Outcome(call));
        WatchRecords({});
        EXPECT_GT(*std::max_element(open.begin(), open.end()), open.front()) << "nothing was held";
        EXPECT_EQ(open.back(), open.front()) << Records();
    }
}
#endif

TEST_F(ConnectionTest, RequestsCarryTheKeyAndNothingOfTheirOwn) {
    std::list<KVolumeRecord> volumes;
    connection->GetVolumesList(&volumes);
    Answer(200, "<detach-volume-response><status>0</status></detach-volume-response>");
    connection->DetachVolume("vol1", "srv1");
    const auto journal = simulator.Journal();
    ASSERT_EQ(journal.size(), 2U);
    using Headers = std::vector<std::pair<std::string, std::string>>;
    const Headers common{{"Host", simulator.Address()}, {"Accept", "*/*"}, {"X-Access-Key", simulator.Key()}};
    EXPECT_EQ(journal[0].headers, common);
    Headers post = common;
    post.emplace_back("Content-Length", "12");
    post.emplace_back("Content-Type", "application/x-www-form-urlencoded");
    EXPECT_EQ(journal[1].headers, post);
    EXPECT_TRUE(journal[0].newConnection);
    EXPECT_TRUE(journal[1].newConnection);
}

/// A query, and what it logs around its exchange.
struct QueryCase {
    const char* name;
    std::function<int(KConnection&)> call;
    const char* path;
    bool logsPath;
    const char* codeFailure;  ///< for the code 500
};

const QueryCase queries[] = {
    {"GetVolumesList",
     [](KConnection& c) {
         std::list<KVolumeRecord> records;
         return c.GetVolumesList(&records);
     },
     "/api/volumes", false, "HTTP return code: 500. List volume failed"},
    {"GetSnapshotsList",
     [](KConnection& c) {
         std::list<KSnapshotRecord> records;
         return c.GetSnapshotsList("a/b", &records);
     },
     "/api/consistency_groups/a/b/snapshots", true, "HTTP return code: 500. List snapshot failed"},
    {"ListVolumes",
     [](KConnection& c) {
         std::string reply;
         return c.ListVolumes(reply);
     },
     "/api/volumes", false, "List volume failed"},
    {"ListServers",
     [](KConnection& c) {
         std::string reply;
         return c.ListServers(reply);
     },
     "/api/servers", false, "List servers failed"},
};

TEST_F(ConnectionTest, QueriesFailAsTheirExchangeDoes) {
    for (const QueryCase& query : queries) {
        SCOPED_TRACE(query.name);
        const std::string name = std::string("KConnection::") + query.name;
        const std::string begun =
            "3 Entering " + name + '\n' + (query.logsPath ? std::string("4 URL: ") + query.path + '\n' : "");
        const auto call = [&] { return Outcome([&] { return query.call(*connection); }); };

        Answer(500, "<volumes/>");
        EXPECT_EQ(call(), std::string("KException: ") + query.codeFailure);
        EXPECT_EQ(Records(), begun + Exchanged(query.path, 500) + "0 std::exception\n");
        EXPECT_EQ(Wire(), std::string("GET ") + query.path + " \n");

        for (const char* kind : {"drop", "cut"}) {
            simulator.Arm({{"kind", kind}});
            EXPECT_EQ(call(), "KException: Failed to perform curl action");
            EXPECT_EQ(Records(), begun + Exchanged(query.path, 0) + "0 std::exception\n");
        }
        Wire();
    }
}

TEST_F(ConnectionTest, ARedirectIsFollowed) {
    simulator.Arm({{"kind", "redirect"}, {"status", 302}, {"location", "/api/volumes"}, {"path", "/api/servers"}});
    std::string reply = "kept";
    EXPECT_EQ(connection->ListServers(reply), 0);
    EXPECT_THAT(reply, testing::StartsWith("kept<"));
    EXPECT_EQ(Wire(), "GET /api/servers \nGET /api/volumes \n");
}

TEST_F(ConnectionTest, QueriesRefuseMissingArguments) {
    EXPECT_EQ(Outcome([&] { return connection->GetVolumesList(nullptr); }),
              "invalid_argument: KConnection::GetVolumesList - Invalid input argument");
    std::list<KSnapshotRecord> records;
    for (const auto& [group, list] :
         {std::pair{"", &records}, std::pair<const char*, decltype(&records)>{"g", nullptr}}) {
        EXPECT_EQ(Outcome([&, g = group, l = list] { return connection->GetSnapshotsList(g, l); }),
                  "invalid_argument: KConnection::GetSnapshotsList - Invalid input argument");
    }
    EXPECT_EQ(Wire(), "");
}

TEST_F(ConnectionTest, CombinedQueriesLogAFailureTwice) {
    std::string id = "old";
    Answer(401, "");
    EXPECT_EQ(Outcome([&] { return connection->GetServerInfoByIQN("iqn", id, id); }),
              "KException: List servers failed");
    EXPECT_EQ(Records(),
              "3 Entering KConnection::GetServerInfoByIQN for host iqn iqn\n"
              "3 Entering KConnection::ListServers\n" +
                  Exchanged("/api/servers", 401) + "0 std::exception\n0 std::exception\n");
    EXPECT_EQ(connection->GetVolumeInfoByDispName("", id, id, id), 2);
    EXPECT_EQ(id, "old");
    EXPECT_EQ(Records(),
              "3 Entering KConnection::GetVolumeInfoByDispName for volume \n3 Entering KConnection::ListVolumes\n" +
                  Exchanged("/api/volumes") +
                  "3 Exiting KConnection::ListVolumes with return code 0\n"
                  "3 Entering KConnection::ParseVolumeXMLByName for volume old\n"
                  "3 Exiting KConnection::ParseVolumeXMLByName with return code 2\n"
                  "3 Exiting KConnection::GetVolumeInfoByDispName with return code 2\n");
    EXPECT_EQ(connection->GetServerInfoByIQN("iqn.a", id, id), 0);
    EXPECT_THAT(Records(), testing::EndsWith("3 Exiting KConnection::ListServers with return code 0\n"
                                             "3 Entering KConnection::ParseServerXMLByIQN for hostIQN iqn.a\n"
                                             "2 serverID: srv1, hostIQN: iqn.a, iscsiIP: srv1\n"
                                             "3 Exiting KConnection::ParseServerXMLByIQN with return code 0\n"
                                             "3 Exiting KConnection::GetServerInfoByIQN with return code 0\n"));
}

TEST_F(ConnectionTest, ArraysAreValidatedByTheirDrives) {
    KAccessLayer layer;
    std::string address = simulator.Address();
    std::string key = simulator.Key();
    std::string empty;
    TakeRecords();
    const std::string entry =
        "3 Entering KConnection::ValidateArray for arrayIP: ADDRESS accessKey: KEY\n"
        "3 Entering KConnection::ListDrives\n2 URL: https://ADDRESS/api/drives\n"
        "4 X-Access-Key: KEY\n";
    const auto validate = [&](std::string& a, std::string& k) {
        return Outcome([&] { return layer.ValidateArray(a, k); });
    };

    EXPECT_EQ(validate(address, key), "0");
    EXPECT_EQ(Records(), entry +
                             "4 HTTP Return Code :200\n3 Entering KConnection::ParseDriveList\n"
                             "3 Exiting KConnection::ParseDriveList with return code 0\n"
                             "3 Exiting KConnection::ListDrives with return code 0\n2 List disks successfull.\n"
                             "3 Exiting KConnection::ValidateArray with return code 0\n");
    Answer(200, "<other/>");
    EXPECT_EQ(validate(address, key), "1");
    EXPECT_EQ(Records(), entry +
                             "4 HTTP Return Code :200\n3 Entering KConnection::ParseDriveList\n"
                             "2 No response for disk list received\n"
                             "3 Exiting KConnection::ParseDriveList with return code 1\n"
                             "3 Exiting KConnection::ListDrives with return code 1\n"
                             "0 List disk failed. Invalid array credentials\n"
                             "3 Exiting KConnection::ValidateArray with return code 1\n");
    Answer(403, "");
    EXPECT_EQ(validate(address, key), "KException: List drives failed");
    EXPECT_EQ(Records(), entry + "4 HTTP Return Code :403\n0 std::exception\n");
    std::string nobody = "127.0.0.1:1";
    EXPECT_EQ(validate(nobody, key), "KException: Failed to perform curl action");
    TakeRecords();
    EXPECT_EQ(validate(address, empty), "invalid_argument: KAccessLayer::ValidateArray - Invalid input");
    EXPECT_EQ(validate(empty, key), "invalid_argument: KAccessLayer::ValidateArray - Invalid input");
    EXPECT_EQ(Records(), "");
    EXPECT_EQ(Wire(), "GET /api/drives \nGET /api/drives \nGET /api/drives \n");
}

}  // namespace
}  // namespace Korvel
