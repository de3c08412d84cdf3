#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>

#include "support/OpenDescriptors.h"
#include "support/Outcome.h"
#include "support/RecordingLogger.h"
#include "torture/Calls.h"

namespace Korvel::Torture {
namespace {

using Testing::JournalEntry;
using Testing::Simulator;

/// What a caller sees of a fault.
enum class Effect {
    Transport,   ///< the exchange fails
    Refusal,     ///< a status other than 200
    Unreadable,  ///< 200 with what is no XML
    Nothing,     ///< 200 with XML that holds nothing of what is looked for
    Refused,     ///< 200 with the array's own refusal
    None,        ///< the request is answered in the end
};

struct Fault {
    const char* name;
    Effect effect;
    nlohmann::json armed;
    int status = 0;  ///< what a refusal shows
    int seen = 1;    ///< how often the request comes to the journal
};

// Whether the system's TLS takes the end of a connection that nobody announced for a cut.
#ifdef _WIN32
constexpr bool cutShort = true;
#else
constexpr bool cutShort = false;
#endif

constexpr const char* nowhere = "/nowhere";

constexpr const char* refused =
    "<x><create-snapshot-set-response><status>1</status><status-msg>full</status-msg></create-snapshot-set-response>"
    "<delete-snapshot-response><status>1</status><status-msg>full</status-msg></delete-snapshot-response>"
    "<create-server-response><status>1</status><status-msg>full</status-msg></create-server-response>"
    "<clone-cg-response><status>1</status><status-msg>full</status-msg></clone-cg-response>"
    "<attach-volume-response><status>1</status><status-msg>full</status-msg></attach-volume-response>"
    "<detach-volume-response><status>1</status><status-msg>full</status-msg></detach-volume-response>"
    "<delete-volume-response><status>1</status><status-msg>full</status-msg></delete-volume-response></x>";

Fault Status(const char* name, int status) {
    return {name, Effect::Refusal, {{"kind", "status"}, {"status", status}, {"body", "<x/>"}}, status};
}

Fault Body(const char* name, Effect effect, const std::string& body) {
    return {name, effect, {{"kind", "body"}, {"body", body}}};
}

Fault Raw(const char* name, Effect effect, const std::string& bytes) {
    return {name, effect, {{"kind", "raw"}, {"body", "HTTP/1.1 " + bytes}}};
}

/// No request gets through what breaks before it.
Fault Handshake(const char* name, const char* how) {
    return {name, Effect::Transport, {{"kind", "connection"}, {"handshake", how}, {"hold", 20}}, 0, 0};
}

std::string Repeated(const std::string& text, std::size_t count) {
    std::string repeated;
    while (count-- > 0) {
        repeated += text;
    }
    return repeated;
}

const std::vector<Fault>& Faults() {
    static const std::vector<Fault> faults = {
        Status("201", 201),
        Status("204", 204),
        Status("304", 304),
        Status("400", 400),
        Status("401", 401),
        Status("404", 404),
        Status("500", 500),
        Status("503", 503),
        Body("empty body", Effect::Unreadable, ""),
        Body("text", Effect::Unreadable, "Service unavailable"),
        Body("HTML", Effect::Unreadable, "<html><body>Busy<br></body></html>"),
        Body("cut XML", Effect::Unreadable, "<x><volumes><volume><name>vol-00000001</name>"),
        Body("two roots", Effect::Unreadable, "<x/><x/>"),
        Body("other XML", Effect::Nothing, "<x/>"),
        Body("refusal", Effect::Refused, refused),
        {"drop", Effect::Transport, {{"kind", "drop"}}},
        {"drop, executed", Effect::Transport, {{"kind", "drop"}, {"execute", true}}},
        {"cut, half", Effect::Transport, {{"kind", "cut"}}},
        {"cut, nothing", Effect::Transport, {{"kind", "cut"}, {"keep", 0}}},
        {"cut, one byte", Effect::Transport, {{"kind", "cut"}, {"keep", 1}}},
        {"cut, stalled", Effect::Transport, {{"kind", "cut"}, {"hold", 30}}},
        {"cut, reset", Effect::Transport, {{"kind", "cut"}, {"reset", true}}},
        {"drop, reset", Effect::Transport, {{"kind", "drop"}, {"reset", true}}},
        {"drip", Effect::None, {{"kind", "drip"}, {"pause", 1}, {"step", 50}}},
        {"no HTTP", Effect::Transport, {{"kind", "raw"}, {"body", std::string("\x16\x03\x01nothing", 10)}}},
        Raw("half a header", cutShort ? Effect::Transport : Effect::Unreadable, "200 OK\r\nContent-Len"),
        Raw("length too long", Effect::Transport, "200 OK\r\nContent-Length: 99\r\n\r\n<x/>"),
        Raw("length too short", Effect::Nothing, "200 OK\r\nContent-Length: 4\r\n\r\n<x/><y/>"),
        Raw("length below 0", Effect::Transport, "200 OK\r\nContent-Length: -4\r\n\r\n<x/>"),
        Raw("length of no number", Effect::Transport, "200 OK\r\nContent-Length: four\r\n\r\n<x/>"),
        Raw("no length", cutShort ? Effect::Transport : Effect::Nothing, "200 OK\r\n\r\n<x/>"),
        Raw("chunk of no number", Effect::Transport, "200 OK\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n<x/>\r\n"),
        Raw("chunk too long", Effect::Transport, "200 OK\r\nTransfer-Encoding: chunked\r\n\r\nff\r\n<x/>"),
        Raw("no last chunk", Effect::Transport, "200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\n<x/>\r\n"),
        Raw("1xx storm", Effect::Nothing,
            "100 Continue\r\n\r\n" + Repeated("HTTP/1.1 100 Continue\r\n\r\n", 200) +
                "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\n<x/>"),
        Raw("huge header", Effect::Transport,
            "200 OK\r\nX: " + std::string(300000, 'x') + "\r\nContent-Length: 4\r\n\r\n<x/>"),
        Handshake("closed before the handshake", "closed"),
        Handshake("reset before the handshake", "reset"),
        Handshake("closed within the handshake", "cut"),
        Handshake("garbage in the handshake", "garbage"),
        Handshake("another version of TLS", "version"),
        Handshake("stalled handshake", "stalled"),
        {"delay", Effect::None, {{"kind", "delay"}, {"delay", 20}}},
        {"redirect loop",
         Effect::None,
         {{"kind", "redirect"}, {"status", 307}, {"location", ""}, {"count", 15}},
         0,
         16},
        {"redirect elsewhere", Effect::Refusal, {{"kind", "redirect"}, {"status", 307}, {"location", nowhere}}, 404, 2},
        {"redirect to nobody", Effect::Transport, {{"kind", "redirect"}, {"location", "https://127.0.0.1:1/"}}},
    };
    return faults;
}

/// @return what a call does when all goes well: what it leaves behind, and its requests
struct Reference {
    std::string known;
    std::string given;
    std::vector<JournalEntry> requests;
};

std::string Expected(const Request& request, const Fault& fault) {
    switch (fault.effect) {
        case Effect::Transport:
            return "KException: Failed to perform curl action";
        case Effect::Unreadable:
            return "KException: Failed to open the xml document";
        case Effect::Nothing:
            return request.nothing;
        case Effect::Refused:
            return request.command ? "KException: full" : request.nothing;
        case Effect::None:
            return "0";
        case Effect::Refusal:
            break;
    }
    char text[512];
    std::snprintf(text, sizeof text, request.refusal, static_cast<long>(fault.status));
    return std::string("KException: ") + text;
}

class WireTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        KAccessLayer::GlobalInit();
        state = Inventory(Simulator::Instance().State());
    }
    static void TearDownTestSuite() { KAccessLayer::GlobalCleanup(); }

    /// Makes one call on a fresh array, with the fault at one of its requests, and looks at all it leaves behind.
    static void Try(const Call& call, const Reference& reference, std::size_t hit, const Fault& fault);

    static Reference Refer(const Call& call);

    static inline nlohmann::json state;
    Simulator& simulator = Simulator::Instance();
};

/// Puts the array back, forgets faults and requests.
void Restore(const nlohmann::json& state) {
    Simulator::Instance().ClearFaults();
    Simulator::Instance().ClearJournal();
    Simulator::Instance().SetState(0, state);
    TakeRecords();
}

Reference WireTest::Refer(const Call& call) {
    Restore(state);
    Scene scene(Simulator::Instance().Address(), Simulator::Instance().Key());
    EXPECT_EQ(Outcome([&] { return call.run(scene); }), "0");
    return {scene.Known(), scene.Given(), Simulator::Instance().Journal()};
}

/// @return the requests' methods and targets
std::vector<std::string> Targets(const std::vector<JournalEntry>& requests) {
    std::vector<std::string> targets;
    for (const JournalEntry& request : requests) {
        targets.push_back(request.method + ' ' + request.target);
    }
    return targets;
}

void WireTest::Try(const Call& call, const Reference& reference, std::size_t hit, const Fault& fault) {
    Simulator& array = Simulator::Instance();
    Restore(state);
    Scene scene(array.Address(), array.Key());
    const std::string before = scene.Known();
    const std::string nothing = scene.Given();
    nlohmann::json armed = fault.armed;
    armed["skip"] = hit;
    armed["array"] = 0;
    if (armed.value("location", "-").empty()) {
        armed["location"] = reference.requests[hit].target;
    }
    array.Arm(armed);
    const unsigned long descriptors = Testing::OpenDescriptors();
    const std::string outcome = Outcome([&] { return call.run(scene); });
    EXPECT_EQ(Testing::OpenDescriptors(), descriptors);
    EXPECT_EQ(array.UnfiredFaults(), nlohmann::json::array());
    EXPECT_EQ(outcome, Expected(call.requests[hit], fault));
    EXPECT_EQ(scene.Known(), outcome == "0" ? reference.known : before);
    EXPECT_EQ(scene.Given(), outcome == "0" ? reference.given : nothing);
    const std::vector<std::string> seen = Targets(array.Journal());
    std::vector<std::string> expected = Targets(reference.requests);
    const std::string faulted = expected[hit];
    const std::vector<std::string> after(expected.begin() + static_cast<std::ptrdiff_t>(hit) + 1, expected.end());
    expected.resize(hit);
    expected.resize(hit + static_cast<std::size_t>(fault.seen), faulted);
    if (fault.armed.value("location", "") == nowhere) {
        expected.back() = reference.requests[hit].method + ' ' + nowhere;
    }
    if (outcome == "0") {
        expected.insert(expected.end(), after.begin(), after.end());
    }
    EXPECT_EQ(seen, expected);
    array.ClearFaults();
    EXPECT_EQ(Outcome([&] { return NextCall(scene); }), "0");
}

TEST_F(WireTest, EveryFaultAtEveryRequest) {
    std::map<std::string, std::size_t> figures;
    for (const Call& call : Calls()) {
        if (call.requests.empty()) {
            continue;
        }
        const Reference reference = Refer(call);
        ASSERT_EQ(reference.requests.size(), call.requests.size()) << call.name;
        for (std::size_t hit = 0; hit < call.requests.size(); ++hit) {
            for (const Fault& fault : Faults()) {
                SCOPED_TRACE(std::string(call.name) + ", request " + std::to_string(hit + 1) + ", " + fault.name);
                Try(call, reference, hit, fault);
                ++figures[call.name];
            }
        }
    }
    std::ofstream out = Figures("wire");
    for (const auto& [name, fired] : figures) {
        out << "| `" << name << "` | " << fired << " |\n";
    }
}

TEST_F(WireTest, NobodyListens) {
    for (const Call& call : Calls()) {
        if (call.requests.empty()) {
            continue;
        }
        SCOPED_TRACE(call.name);
        Scene scene("127.0.0.1:1", "key");
        const std::string before = scene.Known() + scene.Given();
        const unsigned long descriptors = Testing::OpenDescriptors();
        EXPECT_EQ(Outcome([&] { return call.run(scene); }), "KException: Failed to perform curl action");
        EXPECT_EQ(Testing::OpenDescriptors(), descriptors);
        EXPECT_EQ(scene.Known() + scene.Given(), before);
    }
}

}  // namespace
}  // namespace Korvel::Torture
