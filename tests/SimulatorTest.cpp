#include <curl/curl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/Simulator.h"

namespace Korvel::Testing {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Pair;

struct Reply {
    CURLcode result = CURLE_OK;
    long status = 0;
    std::string body;
};

class SimulatorTest : public SimulatedTest {
protected:
    Reply Send(const std::string& method, const std::string& target, const std::string& body = "",
               std::size_t number = 0, bool follow = false) {
        return Ask("https://" + simulator.Address(number) + target, method,
                   "X-Access-Key: " + key + simulator.Key(number), method == "POST" ? &body : nullptr, follow);
    }

    static Reply Ask(const std::string& url, const std::string& method, const std::string& header,
                     const std::string* body = nullptr, bool follow = false) {
        const std::unique_ptr<curl_slist, void (*)(curl_slist*)> headers(curl_slist_append(nullptr, header.c_str()),
                                                                         curl_slist_free_all);
        const std::unique_ptr<CURL, void (*)(CURL*)> handle(curl_easy_init(), curl_easy_cleanup);
        Reply reply;
        curl_easy_setopt(handle.get(), CURLOPT_URL, url.c_str());
        curl_easy_setopt(handle.get(), CURLOPT_PATH_AS_IS, 1L);
        curl_easy_setopt(handle.get(), CURLOPT_SSL_VERIFYPEER, 0L);
        curl_easy_setopt(handle.get(), CURLOPT_SSL_VERIFYHOST, 0L);
        curl_easy_setopt(handle.get(), CURLOPT_FOLLOWLOCATION, follow ? 1L : 0L);
        curl_easy_setopt(handle.get(), CURLOPT_HTTPHEADER, headers.get());
        if (method != "GET") {
            curl_easy_setopt(handle.get(), CURLOPT_CUSTOMREQUEST, method.c_str());
        }
        if (body != nullptr) {
            curl_easy_setopt(handle.get(), CURLOPT_POSTFIELDSIZE, static_cast<long>(body->size()));
            curl_easy_setopt(handle.get(), CURLOPT_POSTFIELDS, body->c_str());
        }
        curl_easy_setopt(handle.get(), CURLOPT_WRITEDATA, &reply.body);
        curl_easy_setopt(
            handle.get(), CURLOPT_WRITEFUNCTION, +[](char* bytes, std::size_t size, std::size_t count, void* text) {
                static_cast<std::string*>(text)->append(bytes, size * count);
                return size * count;
            });
        reply.result = curl_easy_perform(handle.get());
        curl_easy_getinfo(handle.get(), CURLINFO_RESPONSE_CODE, &reply.status);
        return reply;
    }

    std::string key;  // put before the right one, to make it wrong
};

const char* const pair = "snapshots_set_1_name=s1&snapshots_set_1_cg=cg-00000001";
const char* const map = "id=srv-00000001&volume_name=vol-00000001&readonly=no&force=no";
const char* const host = "display_name=h2&iscsi=10.1.1.1&iqn=iqn.h2&ipsec=no&force=no";

// Each step: a command, what its reply has to hold, a listing, and what that holds afterwards.
TEST_F(SimulatorTest, CommandsChangeTheListings) {
    const std::string group = "/api/consistency_groups/cg-00000001";
    const std::vector<std::array<std::string, 6>> steps = {
        {"POST", "/api/snapshots/snapshots_set", pair, "<snapshot>snap-00000005</snapshot>", group + "/snapshots",
         "<name>snap-00000005</name><display-name>s1</display-name>"},
        {"POST", group + "/clone", "snapshot=snap-00000005&name=a b%20c&timeout=30", "<cg-name>cg-00000006</cg-name>",
         "/api/volumes", "<display-name>a b%20c</display-name>"},
        {"POST", "/api/servers", host, "<server-name>srv-00000008</server-name>", "/api/servers", "<iqn>iqn.h2</iqn>"},
        {"POST", "/api/servers/srv-00000001/volumes", map, "<attach-volume-response><status>0<", "/api/volumes",
         "<mapped-to>srv-00000001</mapped-to>"},
        {"DELETE", "/api/volumes/vol-00000001", "", "<status-msg>Volume vol-00000001 is mapped", "/api/volumes",
         "<name>vol-00000001<"},
        {"POST", "/api/volumes/vol-00000001/detach", "servers=srv-00000001", "<detach-volume-response><status>0<",
         "/api/volumes", "!<mapped-to>"},
        {"POST", group + "/rollback", "snapname=snap-00000005&timeout=30", "<clone-cg-response><status>0<",
         "/api/volumes", "<rolled-back-to>snap-00000005<"},
        {"DELETE", "/api/volumes/vol-00000001", "", "which has snapshots", "/api/volumes", "<name>vol-00000001<"},
        {"DELETE", "/api/snapshots/snap-00000005", "", "<delete-snapshot-response><status>0<", group + "/snapshots",
         "!<name>"},
        {"DELETE", "/api/volumes/vol-00000001", "", "<delete-volume-response><status>0<", "/api/volumes",
         "!<name>vol-00000001<"},
    };
    for (const auto& [method, target, body, answer, listing, held] : steps) {
        SCOPED_TRACE(method + " " + target);
        EXPECT_THAT(Send(method, target, body).body, HasSubstr(answer));
        const bool absent = held.front() == '!';
        EXPECT_THAT(Send("GET", listing).body,
                    testing::Conditional(absent, Not(HasSubstr(held.substr(1))), HasSubstr(held)));
    }
}

TEST_F(SimulatorTest, RefusesInTheCommandsOwnElementAndChangesNothing) {
    const json before = simulator.State();
    const std::string second = "&snapshots_set_2_name=s2&snapshots_set_2_cg=";
    const std::string set = "/api/snapshots/snapshots_set";
    const std::vector<std::array<std::string, 5>> cases = {
        {"POST", set, "", "create-snapshot-set", "empty"},
        {"POST", set, pair + second + "nix", "create-snapshot-set", "group nix does not exist"},
        {"POST", set, pair + second, "create-snapshot-set", "set_2_cg is missing"},
        {"POST", set, std::string(pair) + "&snapshots_set_3_name=s3", "create-snapshot-set", "without gaps"},
        {"POST", set, pair + second + "cg-00000002&x", "create-snapshot-set", "no value"},
        {"POST", set, "snapshots_set_1_name=\xc0\xaf&snapshots_set_1_cg=cg-00000001", "create-snapshot-set",
         "not allowed"},
        {"POST", set, "snapshots_set_1_name=\xff&snapshots_set_1_cg=cg-00000001", "create-snapshot-set", "not allowed"},
        {"POST", set, "snapshots_set_1_name=a\x01&snapshots_set_1_cg=cg-00000001", "create-snapshot-set",
         "not allowed"},
        {"POST", set, "snapshots_set_1_name=\x8c\x8c&snapshots_set_1_cg=cg-00000001", "create-snapshot-set",
         "not allowed"},
        {"DELETE", "/api/snapshots/nix", "", "delete-snapshot", "nix does not exist"},
        {"DELETE", "/api/volumes/a/b%2f", "", "delete-volume", "Volume a/b%2f does not exist"},
        {"DELETE", "/api/volumes/vol%c3%a9%", "", "delete-volume", "Volume vol\xc3\xa9% does not exist"},
        {"POST", "/api/consistency_groups/cg-00000001/clone", "snapshot=nix&name=n&timeout=30", "clone-cg", "nix"},
        {"POST", "/api/consistency_groups/nix/rollback", "snapname=s&timeout=30", "clone-cg", "nix"},
        {"POST", "/api/servers", "display_name=h&iqn=i&ipsec=no&force=no", "create-server", "iscsi is missing"},
        {"POST", "/api/servers/nix/volumes", map, "attach-volume", "Server nix"},
        {"POST", "/api/volumes/vol-00000001/detach", "servers=srv-00000001", "detach-volume", "not mapped"},
        {"GET", "/api/consistency_groups/nix/snapshots", "", "show-snapshots", "nix does not exist"},
    };
    for (const auto& [method, target, body, element, message] : cases) {
        SCOPED_TRACE(method + " " + target + " " + body);
        const Reply reply = Send(method, target, body);
        EXPECT_EQ(reply.status, 200);
        EXPECT_THAT(reply.body, AllOf(HasSubstr("<" + element + "-response><status>1<"), HasSubstr(message)));
    }
    EXPECT_EQ(simulator.State(), before);
    EXPECT_EQ(Send("GET", "/api/nix").status, 404);
    EXPECT_EQ(Send("DELETE", "/api/volumes").status, 405);
    key = "x";
    EXPECT_EQ(Send("GET", "/api/volumes").status, 401);
}

/// @return the error that a call of the control interface ends with, or "none"
template <typename Call>
std::string ErrorOf(Call call) {
    try {
        call();
        return "none";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

TEST_F(SimulatorTest, TakesAReplacedStateAndSetsOfThousandsOfVolumes) {
    simulator.SetState(0, {{"volumes", {{{"name", "v"}, {"displayName", "<&>"}, {"group", "a/b"}}}}});
    EXPECT_THAT(Send("GET", "/api/volumes").body, HasSubstr("<display-name>&lt;&amp;&gt;</display-name>"));
    EXPECT_THAT(Send("GET", "/api/servers").body, HasSubstr("<servers/>"));
    std::string set;
    for (int i = 1; i <= 3000; ++i) {
        const std::string name = (i > 1 ? "&" : "") + ("snapshots_set_" + std::to_string(i));
        set += name + "_name=s" + std::to_string(i) + "&" + name.substr(i > 1 ? 1 : 0) + "_cg=a/b";
    }
    EXPECT_THAT(Send("POST", "/api/snapshots/snapshots_set", set).body, HasSubstr("<status>0<"));
    EXPECT_EQ(simulator.State().at("snapshots").at("a/b").size(), 3000U);
    EXPECT_THAT(ErrorOf([&] { simulator.SetState(0, {{"volumes", {{{"nmae", "v"}}}}}); }), HasSubstr("field nmae"));
    EXPECT_THAT(ErrorOf([&] { simulator.SetState(9, json::object()); }), HasSubstr("there is no array 9"));

    // Names that it gives are new, whatever a state holds that says nothing of numbers.
    const json volume = {{"name", "snap-00000003"}, {"displayName", "d"}, {"group", "cg-00000002"}};
    simulator.SetState(0, {{"volumes", {volume}}, {"snapshots", {{"g", {{{"name", "snap-00000004"}}}}}}});
    const std::string pairOf2 = "snapshots_set_1_name=s&snapshots_set_1_cg=cg-00000002";
    EXPECT_THAT(Send("POST", "/api/snapshots/snapshots_set", pairOf2).body, HasSubstr("<snapshot>snap-00000005<"));
}

TEST_F(SimulatorTest, FaultsHitTheRequestsTheyAreMeantFor) {
    const std::string whole = Send("GET", "/api/drives").body;
    EXPECT_THAT(whole, HasSubstr("<disk><name>1.1</name><health>OK</health></disk>"));
    struct Case {
        json fault;
        CURLcode result;
        long status;
        std::string body;
    };
    const Case cases[] = {
        {{{"kind", "status"}, {"status", 503}, {"body", "busy"}}, CURLE_OK, 503, "busy"},
        {{{"kind", "body"}, {"body", {{"base64", "/wA+Pw=="}}}}, CURLE_OK, 200, std::string("\xff\0>?", 4)},
        {{{"kind", "cut"}, {"keep", 9}}, CURLE_PARTIAL_FILE, 200, whole.substr(0, 9)},
        {{{"kind", "drop"}}, CURLE_GOT_NOTHING, 0, ""},
        {{{"kind", "delay"}, {"delay", 1}}, CURLE_OK, 200, whole},
        {{{"kind", "redirect"}, {"location", "/api/nix"}}, CURLE_OK, 302, ""},
        {{{"kind", "cut"}, {"keep", 9}, {"hold", 1}, {"reset", true}}, CURLE_RECV_ERROR, 200, whole.substr(0, 9)},
        {{{"kind", "drip"}, {"pause", 1}, {"step", 50}}, CURLE_OK, 200, whole},
        {{{"kind", "drop"}, {"reset", true}}, CURLE_RECV_ERROR, 0, ""},
        {{{"kind", "raw"}, {"body", "HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 204 None\r\n\r\n"}}, CURLE_OK, 204, ""},
        {{{"kind", "raw"}, {"body", "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n<a/>"}, {"hold", 1}},
         CURLE_PARTIAL_FILE,
         200,
         "<a/>"},
    };
    for (const auto& [fault, result, status, body] : cases) {
        SCOPED_TRACE(fault.dump());
        json armed = fault;
        armed.update({{"array", 0}, {"method", "GET"}, {"path", "/api/drives"}, {"skip", 1}});
        simulator.Arm(armed);
        EXPECT_EQ(Send("GET", "/api/drives").body, whole);
        EXPECT_EQ(Send("GET", "/api/drives", "", 1).body, whole);
        EXPECT_EQ(Send("POST", "/api/drives").status, 405);
        EXPECT_EQ(simulator.UnfiredFaults().size(), 1U);
        const Reply reply = Send("GET", "/api/drives");
        // With some TLS libraries a connection that ends early is an error of receiving.
        EXPECT_TRUE(reply.result == result || (result != CURLE_OK && reply.result == CURLE_RECV_ERROR)) << reply.result;
        EXPECT_EQ(reply.status, status);
        EXPECT_EQ(reply.body, body);
        EXPECT_TRUE(simulator.UnfiredFaults().empty());
        EXPECT_EQ(Send("GET", "/api/drives").body, whole);
    }
    simulator.Arm({{"kind", "redirect"}, {"location", "/api/drives"}, {"glob", "/api/v*"}});
    EXPECT_EQ(Send("GET", "/api/volumes", "", 0, true).body, whole);
    EXPECT_FALSE(simulator.Journal().back().newConnection);
    simulator.Arm({{"kind", "drop"}, {"execute", true}});
    EXPECT_NE(Send("DELETE", "/api/volumes/vol-00000001").result, CURLE_OK);
    EXPECT_EQ(simulator.State().at("volumes").size(), 3U);
}

TEST_F(SimulatorTest, AGlobIsTheShapeOfAPath) {
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"*", "/api/drives", true},
        {"/api/drives", "/api/drives", true},
        {"/api/drives", "/api/drives/", false},
        {"/api/d*s", "/api/drives/addresses", true},
        {"/*/*/x*y?", "/api/xy/xaxyyz", true},
        {"/api/d*s", "/api/drives/a", false},
        {"/?pi/*", "/api/drives", true},
        {"/api/?", "/api/", false},
        {"/[a-c]pi/drives", "/api/drives", true},
        {"/[!a-c]pi/drives", "/api/drives", false},
        {"/[x!-]pi", "/-pi", true},
        {"/[a-]pi", "/-pi", true},
        {"/[!a]pi", "/!pi", true},
        {"/[]a]pi", "/]pi", true},
        {"/[api", "/[api", true},
        {"", "/api", false},
    };
    for (const auto& [glob, path, hit] : cases) {
        simulator.Arm({{"kind", "status"}, {"status", 418}, {"glob", glob}});
        EXPECT_EQ(Send("GET", path).status == 418, hit) << glob << " " << path;
        simulator.ClearFaults();
    }
}

TEST_F(SimulatorTest, ConnectionsEndBeforeTheirFirstRequest) {
    for (const char* handshake : {"closed", "cut", "garbage", "version", "stalled", "reset"}) {
        SCOPED_TRACE(handshake);
        simulator.Arm({{"kind", "connection"}, {"handshake", handshake}, {"hold", 1}, {"array", 1}});
        EXPECT_EQ(Send("GET", "/api/drives").status, 200) << "another array's";
        EXPECT_NE(Send("GET", "/api/drives", "", 1).result, CURLE_OK);
        EXPECT_EQ(simulator.UnfiredFaults(), json::array());
        EXPECT_EQ(Send("GET", "/api/drives", "", 1).status, 200);
    }
}

TEST_F(SimulatorTest, AFaultIsShownAsItWasArmed) {
    const json cases[] = {
        {{"kind", "status"}, {"status", 503}, {"body", "x"}, {"array", 1}, {"method", "GET"}, {"path", "/a"}},
        {{"kind", "redirect"}, {"status", 307}, {"location", "/x"}, {"glob", "/api/*"}, {"execute", true}},
        {{"kind", "cut"}, {"keep", 3}, {"hold", 2}, {"reset", true}, {"port", 1}, {"delay", 5}},
        {{"kind", "drip"}, {"pause", 1}, {"step", 2}},
        {{"kind", "connection"}, {"handshake", "garbage"}, {"hold", 1}},
    };
    json armed = json::array();
    for (json fault : cases) {
        fault.update({{"skip", 3}, {"count", 2}});
        fault["id"] = simulator.Arm(fault);
        fault["fired"] = 0;
        armed.push_back(fault);
    }
    EXPECT_EQ(simulator.UnfiredFaults(), armed);
    simulator.ClearFaults();
}

TEST_F(SimulatorTest, RefusesFaultsThatMakeNoSense) {
    const std::string deep = std::string(400000, '[') + std::string(400000, ']');
    const std::pair<json, const char*> cases[] = {
        {json::array(), "a fault is an object"},
        {{{"kind", "nix"}}, "kind must be one of status, delay,"},
        {{{"kind", nullptr}}, "kind must be one of status, delay,"},
        {{{"kind", "status"}}, "the kind status needs the field status"},
        {{{"kind", "status"}, {"status", 4294967796}}, "status must be a whole number, at least 200 and at most 599"},
        {{{"kind", "drop"}, {"pth", "/api/volumes"}}, "unknown field pth"},
        {{{"kind", "drop"}, {"count", 0}}, "count must be a whole number, at least 1"},
        {{{"kind", "drop"}, {"array", 2}}, "there is no array 2"},
        {{{"kind", "drop"}, {"array", -1}}, "array must be a whole number"},
        {{{"kind", "drop"}, {"method", "get"}}, "method must be in capitals"},
        {{{"kind", "drop"}, {"path", "/"}, {"glob", "*"}}, "path and glob must not be given both"},
        {{{"kind", "body"}, {"body", {{"base64", "*"}}}}, "not a base64 text"},
        {{{"kind", "body"}, {"body", {{"base64", "AAAA\n"}}}}, "not a base64 text"},
        {{{"kind", "connection"}, {"handshake", "nix"}}, "handshake must be one of closed,"},
        {{{"kind", "connection"}, {"handshake", "cut"}, {"path", "/"}}, "unknown field path"},
    };
    for (const auto& [fault, error] : cases) {
        EXPECT_THAT(ErrorOf([&, &armed = fault] { simulator.Arm(armed); }), HasSubstr(error)) << fault;
    }
    EXPECT_EQ(simulator.UnfiredFaults(), json::array());
    EXPECT_THAT(ErrorOf([&] { simulator.SetState(0, {{"nextNumber", -1}}); }), HasSubstr("nextNumber must be"));
    EXPECT_THAT(ErrorOf([&] { simulator.Put("/arrays/0/state", deep); }), HasSubstr("nested too deep"));
}

TEST_F(SimulatorTest, TheControlInterfaceAnswersThisMachineOnly) {
    const std::string fault = "/faults/" + std::to_string(simulator.Arm({{"kind", "drop"}, {"path", "/nobody"}}));
    const std::array<std::string, 5> cases[] = {
        {"GET", "/health", "Accept: */*", "200", "ok"},
        {"GET", "/version", "Origin: http://localhost:1", "200", "version"},
        {"GET", "/version", "Host: array.example", "403", "Host and Origin"},
        {"GET", "/version", "Host: 127.0.0.1.example:80", "403", "Host and Origin"},
        {"GET", "/version", "Origin: https://page.example", "403", "Host and Origin"},
        {"GET", "/version", "Origin: null", "403", "Host and Origin"},
        {"GET", fault, "Accept: */*", "200", "/nobody"},
        {"DELETE", fault, "Accept: */*", "200", "{}"},
        {"DELETE", fault, "Accept: */*", "404", "there is no fault"},
        {"GET", "/faults/x", "Accept: */*", "404", "nothing of this method and path"},
    };
    for (const auto& [method, path, header, status, part] : cases) {
        const Reply reply =
            Ask("http://" + std::string(std::getenv("KORVEL_SIMULATOR_CONTROL")) + path, method, header);
        EXPECT_EQ(std::to_string(reply.status), status) << method << ' ' << path << ' ' << header;
        EXPECT_THAT(reply.body, HasSubstr(part));
    }
    EXPECT_THAT(ErrorOf([&] {
                    simulator.SetState(0, {{"volumes", 7}});
                }),
                HasSubstr("volumes must be of the type array"));
}

TEST_F(SimulatorTest, ClientsThatSayNothingKeepNobodyWaiting) {
    std::vector<std::unique_ptr<CURL, void (*)(CURL*)>> silent;
    for (int i = 0; i < 64; ++i) {
        CURL* const handle = silent.emplace_back(curl_easy_init(), curl_easy_cleanup).get();
        curl_easy_setopt(handle, CURLOPT_URL, ("http://" + simulator.Address()).c_str());
        curl_easy_setopt(handle, CURLOPT_CONNECT_ONLY, 1L);
        ASSERT_EQ(curl_easy_perform(handle), CURLE_OK);
    }
    EXPECT_EQ(Send("GET", "/api/drives").status, 200);
    EXPECT_EQ(Ask("https://" + simulator.Address() + "/api/servers", "POST", "X-Access-Key: " + simulator.Key()).status,
              400)
        << "no body";
}

TEST_F(SimulatorTest, JournalHoldsWhatCameOverTheWire) {
    Send("POST", "/api/a%41/../b", std::string("x=\xfe%41&\0", 8), 1);
    simulator.Arm({{"kind", "drop"}});
    Send("GET", "/api/drives");
    Send("GET", "/api/a?b?c");
    const auto entries = simulator.Journal();
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(entries[0].method, "POST");
    EXPECT_EQ(entries[0].target, "/api/a%41/../b");
    EXPECT_EQ(entries[0].version, "HTTP/1.1");
    EXPECT_EQ(entries[0].body, R"({"base64":"eD3+JTQxJgA="})");
    EXPECT_EQ(entries[0].array, 1U);
    EXPECT_EQ(entries[0].headers.front(), std::make_pair(std::string("Host"), simulator.Address(1)));
    EXPECT_THAT(entries[0].headers, Contains(Pair("X-Access-Key", simulator.Key(1))));
    EXPECT_TRUE(entries[1].newConnection);
    EXPECT_EQ(entries[1].array, 0U);
    EXPECT_EQ(entries[1].sequence, 2U);
    EXPECT_NE(entries[1].fault, 0U);
    EXPECT_EQ(entries[2].target, "/api/a?b?c");
    simulator.ClearJournal();
    EXPECT_TRUE(simulator.Journal().empty());
}

}  // namespace
}  // namespace Korvel::Testing
