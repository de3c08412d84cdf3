#include <gtest/gtest.h>

#include "rest/KConnection.h"
#include "support/Outcome.h"
#include "support/RecordingLogger.h"

namespace Korvel {
namespace {

/// A reply and what its reader makes of it: how the call ends and what it hands out, then the log records.
struct ReplyCase {
    const char* reply;
    const char* expected;
};

/// Calls a reader of a connection.
/// @param call takes the connection and returns the reader's status
/// @param results returns what the reader handed out, after the call
template <typename Call, typename Results>
std::string Read(Call call, Results results) {
    KConnection connection("array", "key");
    TakeRecords();
    const std::string outcome = Outcome([&] { return call(connection); });
    return outcome + ' ' + results() + '\n' + TakeRecords();
}

TEST(ReaderTest, ReadsTheVolumeListing) {
    const ReplyCase cases[] = {
        {"<r><volumes><volume><cg-name>g</cg-name><x>?</x><product-id>abc-1-2</product-id><ieee-id>i</ieee-id>"
         "<name>n</name><display-name>d</display-name></volume><volume/></volumes></r>",
         "0 ,,,,;abc,n,d,i,g;,,,,;\n3 Entering KConnection::ParseVolumeList\n"
         "3 Exiting KConnection::ParseVolumeList with return code 0\n"},
        // Five recognised children end the record, and an empty product identifier replaces the one before it.
        {"<volumes><volume><name>a</name><product-id>p</product-id><product-id/><name/><name><!-- no text --></name>"
         "<cg-name>late</cg-name></volume><volume><product-id>-x</product-id><name>&lt;<![CDATA[&]]></name>"
         "<k:cg-name xmlns:k='u'>g</k:cg-name><Display-Name>D</Display-Name></volume></volumes>",
         "0 ,,,,;,a,,,;,<&,,,g;\n3 Entering KConnection::ParseVolumeList\n"
         "3 Exiting KConnection::ParseVolumeList with return code 0\n"},
        {"<volumes><other/></volumes>",
         "2 ,,,,;\n3 Entering KConnection::ParseVolumeList\n2 No volume found in the array\n"},
        {"<volumes><volume></volumes>",
         "KException: Failed to open the xml document ,,,,;\n3 Entering KConnection::ParseVolumeList\n"
         "0 std::exception\n"},
    };
    for (const ReplyCase& given : cases) {
        std::list<KVolumeRecord> records(1);
        const auto results = [&] {
            std::string text;
            for (const auto& [productID, name, displayName, ieeeID, cgName] : records) {
                text += productID + ',' + name + ',' + displayName + ',' + ieeeID + ',' + cgName + ';';
            }
            return text;
        };
        EXPECT_EQ(Read([&](KConnection& reader) { return reader.ParseVolumeList(given.reply, &records); }, results),
                  given.expected);
    }
}

TEST(ReaderTest, FindsAVolumeByItsDisplayName) {
    const ReplyCase cases[] = {
        // The first match counts; what it lacks is carried over from the volume before it.
        {"<volumes><volume><display-name>Wanted</display-name><ieee-id>i1</ieee-id><cg-name>g1</cg-name></volume>"
         "<volume><name>n2</name><ieee-id/><display-name>wanted</display-name></volume>"
         "<volume><name>n3</name><display-name>wanted</display-name></volume></volumes>",
         "0 i1,n2,g1\n3 Entering KConnection::ParseVolumeXMLByName for volume id\n"
         "2 volID: i1, volDispName: wanted, volName: n2, cgName: g1\n"
         "3 Exiting KConnection::ParseVolumeXMLByName with return code 0\n"},
        {"<volumes><volume><name>1</name><name>2</name><name>3</name><name>4</name>"
         "<display-name>wanted</display-name></volume></volumes>",
         "2 id,name,group\n3 Entering KConnection::ParseVolumeXMLByName for volume id\n"
         "3 Exiting KConnection::ParseVolumeXMLByName with return code 2\n"},
        {"<volumes/>",
         "2 id,name,group\n3 Entering KConnection::ParseVolumeXMLByName for volume id\n"
         "2 No volume found in the array\n"},
        {"",
         "KException: Failed to open the xml document id,name,group\n"
         "3 Entering KConnection::ParseVolumeXMLByName for volume id\n0 std::exception\n"},
    };
    for (const ReplyCase& given : cases) {
        std::string id = "id";
        std::string name = "name";
        std::string group = "group";
        const auto call = [&](KConnection& reader) {
            return reader.ParseVolumeXMLByName(given.reply, "wanted", id, name, group);
        };
        EXPECT_EQ(Read(call, [&] { return id + ',' + name + ',' + group; }), given.expected);
    }
}

TEST(ReaderTest, FindsAServerByItsInitiatorName) {
    const ReplyCase cases[] = {
        {"<servers><server><name>s1</name><iqn>IQN</iqn><iscsi-ip>10.0.0.1</iscsi-ip></server>"
         "<server><name>s2</name><iqn>iqn</iqn></server><server><name>s3</name><iqn>iqn</iqn></server></servers>",
         "0 s2,10.0.0.1\n3 Entering KConnection::ParseServerXMLByIQN for hostIQN iqn\n"
         "2 serverID: s2, hostIQN: iqn, iscsiIP: 10.0.0.1\n"
         "3 Exiting KConnection::ParseServerXMLByIQN with return code 0\n"},
        {"<servers><server><iscsi-ip>a</iscsi-ip></server><server><iscsi-ip>b</iscsi-ip></server></servers>",
         "2 id,b\n3 Entering KConnection::ParseServerXMLByIQN for hostIQN iqn\n"
         "3 Exiting KConnection::ParseServerXMLByIQN with return code 2\n"},
        {"<servers/>",
         "2 id,ip\n3 Entering KConnection::ParseServerXMLByIQN for hostIQN iqn\n"
         "2 No servers matching the host iqn found in the array\n"},
    };
    for (const ReplyCase& given : cases) {
        std::string id = "id";
        std::string address = "ip";
        const auto call = [&](KConnection& reader) {
            return reader.ParseServerXMLByIQN(given.reply, "iqn", id, address);
        };
        EXPECT_EQ(Read(call, [&] { return id + ',' + address; }), given.expected);
    }
}

TEST(ReaderTest, ReadsTheSnapshotListing) {
    const ReplyCase cases[] = {
        {"<snapshots><snapshot><name>a</name><name>b</name><display-name>late</display-name></snapshot>"
         "<snapshot><display-name/><name>c</name></snapshot><snapshot/></snapshots>",
         "0 ,;b,;c,;,;\n3 Entering KConnection::ParseSnapshotList\n"
         "3 Exiting KConnection::ParseSnapshotList with return code 0\n"},
        {"<snapshots/>", "2 ,;\n3 Entering KConnection::ParseSnapshotList\n2 No snapshots found in the array\n"},
    };
    for (const ReplyCase& given : cases) {
        std::list<KSnapshotRecord> records(1);
        const auto results = [&] {
            std::string text;
            for (const auto& [name, displayName] : records) {
                text += name + ',' + displayName + ';';
            }
            return text;
        };
        EXPECT_EQ(Read([&](KConnection& reader) { return reader.ParseSnapshotList(given.reply, &records); }, results),
                  given.expected);
    }
}

TEST(ReaderTest, TellsADriveListFromOtherReplies) {
    const ReplyCase cases[] = {
        {"<r><show-disks-response><status/><status>9</status></show-disks-response></r>",
         "0 \n3 Entering KConnection::ParseDriveList\n3 Exiting KConnection::ParseDriveList with return code 0\n"},
        {"<show-disks-response><x><status/></x></show-disks-response>",
         "1 \n3 Entering KConnection::ParseDriveList\n2 No response for disk list received\n"
         "3 Exiting KConnection::ParseDriveList with return code 1\n"},
    };
    for (const ReplyCase& given : cases) {
        EXPECT_EQ(Read([&](KConnection&) { return KConnection::ParseDriveList(given.reply); }, [] { return ""; }),
                  given.expected);
    }
}

TEST(ReaderTest, ReadsAResponseByItsAction) {
    const std::string reply =
        "<r><!-- c --><status>0</status><server-name>v</server-name><snapshot-name>s</snapshot-name>"
        "<cg-name>g</cg-name><snapshots>t<snapshot>1</snapshot><other>x</other><snapshot/></snapshots>"
        "<status>7</status><status/><status-msg>m</status-msg></r>";
    const std::string tail = "4 status: 7\n4 status: 7\n4 status-msg: m\n";
    const struct {
        int action;
        const char* results;
        const char* records;
    } cases[] = {
        {0, "7,m,,old;1;;", "4 snapshot: 1\n4 snapshot: \n"},
        {1, "7,m,,old;", ""},
        {2, "7,m,v,old;", "4 server-name: v\n"},
        {3, "7,m,,old;", ""},
        {4, "7,m,,old;", ""},
        {5, "7,m,,old;", ""},
        {6, "7,m,s,old;", "4 snapshot-name: s\n"},
        {7, "7,m,g,old;", "4 cg-name: g\n"},
        {8, "7,m,,old;", ""},
        {-1, "7,m,,old;", ""},
    };
    for (const auto& [action, results, records] : cases) {
        std::list<std::string> names{"old"};
        CommandResponse response;
        response.snapshotNames = &names;
        const auto call = [&, which = action](KConnection& reader) {
            return reader.ParseResponseXML(reply, "//r", which, response);
        };
        const auto handedOut = [&] {
            std::string text = response.status + ',' + response.statusMsg + ',' + response.name + ',';
            for (const std::string& name : names) {
                text += name + ';';
            }
            return text;
        };
        EXPECT_EQ(Read(call, handedOut), std::string("0 ") + results +
                                             "\n3 Entering KConnection::ParseResponseXML with xPathID: //r "
                                             "CommandAction: " +
                                             std::to_string(action) + "\n4 status: 0\n" + records + tail +
                                             "3 Exiting KConnection::ParseResponseXML with return code 0\n");
    }
}

TEST(ReaderTest, MissesAResponseAndRefusesAnExpression) {
    CommandResponse response;
    const std::string entry = "3 Entering KConnection::ParseResponseXML with xPathID: ";
    const auto read = [&](const char* expression) {
        return Read([&](KConnection& reader) { return reader.ParseResponseXML("<q/>", expression, 1, response); },
                    [] { return ""; });
    };
    EXPECT_EQ(read("//r"), "1 \n" + entry + "//r CommandAction: 1\n2 Response not found. Error Condition\n");
    // A namespace is selected, but has nothing to read.
    EXPECT_EQ(read("//namespace::*"),
              "0 \n" + entry +
                  "//namespace::* CommandAction: 1\n3 Exiting KConnection::ParseResponseXML with return code 0\n");
    EXPECT_EQ(read("count(//q)"),
              "1 \n" + entry + "count(//q) CommandAction: 1\n2 Response not found. Error Condition\n");
}

TEST(KeptLeakTest, ADocumentIsLeftBehindWhenItsEvaluationFails) {
    CommandResponse response;
    EXPECT_EQ(Read([&](KConnection& reader) { return reader.ParseResponseXML("<q/>", "//[", 1, response); },
                   [] { return ""; }),
              "KException: Failed to evaluate xPath expression \n"
              "3 Entering KConnection::ParseResponseXML with xPathID: //[ CommandAction: 1\n0 std::exception\n");
}

}  // namespace
}  // namespace Korvel
