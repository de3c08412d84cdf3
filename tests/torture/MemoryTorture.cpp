// Fails the allocations of every public call and every reader, one after the other: only that one, and that one with
// all behind it. Each point has a process of its own, forked from one that is warm, so that a crash costs one point.

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>

#include "Logger.h"
#include "support/TestRegistry.h"
#include "torture/Calls.h"
#include "torture/FailingMemory.h"
#include "torture/Trial.h"

// The logging library of another maker is not what is tried here.
void Logger::Write(int, char*, char*, ...) {}

namespace Korvel::Torture {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* verdictNames[] = {"crash",      "hang",      "unharmed", "threw", "wrong", "changed",
                                        "descriptor", "next-call", "left",     "held",  "missed"};

/// What a child tells of its point, in memory it shares with its parent.
struct Report {
    Verdict verdict = Verdict::Crash;
    Place place;
    std::array<char, 512> text{};
};

/// One child at a time, with an array of its own.
struct Slot {
    std::unique_ptr<Scene> scene;
    Report* report = nullptr;
    pid_t child = 0;
    Point point;
    Clock::time_point deadline;
    bool asked = false;  ///< to tell where it hangs
};

template <typename Shared>
Shared* Share() {
    void* const memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? throw std::bad_alloc() : new (memory) Shared;
}

Report* ownReport = nullptr;

/// Ends a child that crashed or was told to: only says where.
void TellWhere(int signal) {
    ownReport->verdict = signal == SIGUSR1 ? Verdict::Hang : Verdict::Crash;
    ownReport->place = WhereCalled();
    _exit(0);
}

void CatchSignals() {
    static std::array<char, 65536> stack;
    stack_t other{};
    other.ss_sp = stack.data();
    other.ss_size = stack.size();
    sigaltstack(&other, nullptr);
    struct sigaction action {};
    action.sa_handler = TellWhere;
    action.sa_flags = SA_ONSTACK | SA_NODEFER;
    for (const int signal : {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGUSR1}) {
        sigaction(signal, &action, nullptr);
    }
}

class Torture {
public:
    explicit Torture(std::string wantedCall) : wanted(std::move(wantedCall)), reference(Share<Reference>()) {
        AskForArrays();
        for (std::size_t i = 0; i < slots.size(); ++i) {
            slots[i].report = Share<Report>();
            slots[i].scene = std::make_unique<Scene>((*arrays)[i].address.data(), (*arrays)[i].key.data());
        }
    }

    void TryAll() {
        const std::vector<Call>& process = ProcessCalls();
        Try(process.at(0));  // before anything is prepared
        KAccessLayer::GlobalInit();
        simulator = &Testing::Simulator::Instance();
        state = simulator->State();
        for (const Call& call : Calls()) {
            Scene warm((*arrays)[0].address.data(), (*arrays)[0].key.data());
            call.run(warm);
            Restore(0);
            Try(call);
        }
        Try(process.at(1));
    }

    /// Compares with the deviations of libraries that are known: rows of how many at most, how and where.
    bool AreKnown(const char* file) const {
        std::map<std::string, std::size_t> known;
        std::ifstream in(file);
        for (std::string row; std::getline(in, row);) {
            std::size_t most = 0;
            if (std::sscanf(row.c_str(), "| %zu", &most) == 1) {
                known[row.substr(row.find(" | ", 1))] += most;
            }
        }
        bool allKnown = true;
        for (const auto& [what, count] : deviations) {
            const std::size_t most = known.contains(what) ? known[what] : 0;
            if (count > most) {
                std::cout << "NEW, known are " << most << ": | " << count << what << '\n';
                allKnown = false;
            }
        }
        return allKnown;
    }

    /// @return whether the points were met; only handshakes differ by a few allocations from each other
    bool AreMet() const {
        std::cout << missed << " points were not met\n";
        return missed <= verdicts.size();
    }

    void Print() const {
        std::ofstream calls = Figures("memory");
        std::array<std::size_t, 4> all{};
        for (const auto& [name, of] : verdicts) {
            const std::array<std::size_t, 4> row = Row(of);
            calls << "| `" << name << '`';
            for (std::size_t i = 0; i < row.size(); ++i) {
                calls << " | " << row.at(i);
                all.at(i) += row.at(i);
            }
            calls << " |\n";
        }
        calls << "| all |";
        for (const std::size_t sum : all) {
            calls << ' ' << sum << " |";
        }
        calls << '\n';
        std::ofstream libraries = Figures("memory-deviations");
        for (const auto& [what, count] : deviations) {
            libraries << "| " << count << what << '\n';
        }
        std::cout << all[0] << " points, of which " << all[3] << " deviate\n";
    }

private:
    struct Array {
        std::array<char, 64> address{};
        std::array<char, 64> key{};
    };

    /// Asks in a child for where the arrays are and fills them, since asking prepares libcurl.
    void AskForArrays() {
        arrays = Share<std::array<Array, 6>>();
        const pid_t child = fork();
        if (child == 0) {
            Testing::Simulator& asked = Testing::Simulator::Instance();
            const nlohmann::json filled = Inventory(asked.State());
            for (std::size_t i = 0; i < arrays->size(); ++i) {
                Store((*arrays)[i].address, asked.Address(i));
                Store((*arrays)[i].key, asked.Key(i));
                asked.SetState(i, filled);
            }
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        if (status != 0) {
            throw std::runtime_error("there is no simulator with enough arrays");
        }
    }

    /// @return all points, those that did no harm, those that threw, the others
    static std::array<std::size_t, 4> Row(std::map<Verdict, std::size_t> of) {
        const std::size_t unharmed = of[Verdict::Unharmed];
        const std::size_t threw = of[Verdict::Threw];
        std::size_t points = 0;
        for (const auto& [verdict, count] : of) {
            points += verdict == Verdict::Missed ? 0 : count;
        }
        return {points, unharmed, threw, points - unharmed - threw};
    }

    void Restore(std::size_t slot) {
        if (simulator != nullptr) {
            simulator->SetState(slot, state);
        }
    }

    void Learn(const Call& call) {
        *reference = Reference();
        const pid_t child = fork();
        if (child == 0) {
            Trial trial(call, *slots[0].scene);
            trial.Run({}, reference);
            trial.Teach(*reference);
            _exit(0);
        }
        waitpid(child, nullptr, 0);
        Restore(0);
        if (reference->status != 0 || reference->counted > reference->owners.size()) {
            throw std::runtime_error(std::string(call.name) + " does not work even when nothing fails");
        }
    }

    void Try(const Call& call) {
        if (std::string(call.name).find(wanted) == std::string::npos) {
            return;
        }
        Learn(call);
        std::vector<Point> points;
        for (std::uint64_t number = 1; number <= reference->counted; ++number) {
            const Owner owner = reference->owners[number - 1];
            if (owner == Owner::Library || owner == Owner::LibXml2 || number % every == 0) {
                points.push_back({number, false});
                points.push_back({number, true});
            }
        }
        std::size_t next = 0;
        for (bool busy = true; busy;) {
            busy = false;
            for (std::size_t i = 0; i < slots.size(); ++i) {
                if (slots[i].child == 0 && next < points.size()) {
                    Start(call, slots[i], points[next++]);
                } else if (slots[i].child != 0) {
                    Attend(call, i);
                }
                busy = busy || slots[i].child != 0 || next < points.size();
            }
            usleep(200);
        }
    }

    void Start(const Call& call, Slot& slot, Point point) {
        *slot.report = Report();
        slot.point = point;
        slot.asked = false;
        // Long after the longest a call takes on a machine that is busy; it only ever ends what waits for itself.
        slot.deadline = Clock::now() + std::chrono::seconds(5) + 200 * reference->took;
        slot.child = fork();
        if (slot.child == 0) {
            ownReport = slot.report;
            CatchSignals();
            Trial trial(call, *slot.scene);
            trial.Run(point, nullptr);
            slot.report->place = FailedAt();
            std::string text;
            const Verdict verdict = trial.Judge(*reference, text);
            Store(slot.report->text, text);
            slot.report->verdict = verdict;
            _exit(0);
        }
    }

    void Attend(const Call& call, std::size_t number) {
        Slot& slot = slots[number];
        if (waitpid(slot.child, nullptr, WNOHANG) == slot.child) {
            slot.child = 0;
            Note(call, slot);
            if (std::any_of(call.requests.begin(), call.requests.end(), [](const Request& r) { return r.command; })) {
                Restore(number);
            }
        } else if (Clock::now() > slot.deadline) {
            kill(slot.child, slot.asked ? SIGKILL : SIGUSR1);
            slot.report->verdict = slot.asked ? Verdict::Hang : slot.report->verdict;
            slot.asked = true;
            slot.deadline += std::chrono::seconds(5);
        }
    }

    /// @return what a library did by itself, in the words of the list of what is known
    static std::string DeviationOf(const Report& report) {
        std::string what = verdictNames[static_cast<int>(report.verdict)];
        std::string place = report.place.name.data();
        const bool inRequest = report.place.owner == Owner::LibCurl || report.place.owner == Owner::OpenSsl;
        const bool inXPath = report.place.owner == Owner::LibXml2 && (place.find("xmlXPath") != std::string::npos ||
                                                                      place.find("valuePush") != std::string::npos);
        if (report.verdict == Verdict::Hang && inRequest) {
            place = "libcurl.so.4 and libssl.so.3, a handshake without end";  // met anywhere on its way
        } else if (report.verdict == Verdict::Held) {
            place = "libcrypto.so.3 and libssl.so.3, blocks of their own";
        } else if (inXPath && (report.verdict == Verdict::Crash || report.verdict == Verdict::Left)) {
            what = "crash or left";  // by what lies where it has freed a block and goes on with it
            place = "libxml2.so.2, an XPath evaluation";
        }
        return " | " + what + " | " + place + " |";
    }

    void Note(const Call& call, const Slot& slot) {
        const Report& report = *slot.report;
        ++verdicts[call.name][report.verdict];
        missed += report.verdict == Verdict::Missed ? 1 : 0;
        if (report.verdict != Verdict::Unharmed && report.verdict != Verdict::Threw &&
            report.verdict != Verdict::Missed) {
            const std::string what = DeviationOf(report);
            if (++deviations[what] <= 3) {
                std::cout << call.name << ", allocation " << slot.point.number
                          << (slot.point.all ? " and all behind it: " : ": ") << what << ' ' << report.text.data()
                          << std::endl;
            }
        }
    }

    const std::uint64_t every = Whole() ? 1 : 50;  ///< of the allocations inside libcurl, OpenSSL and the like
    const std::string wanted;
    Reference* reference;
    std::array<Array, 6>* arrays = nullptr;
    std::array<Slot, 6> slots;
    Testing::Simulator* simulator = nullptr;
    nlohmann::json state;
    std::map<std::string, std::map<Verdict, std::size_t>> verdicts;
    std::map<std::string, std::size_t> deviations;
    std::size_t missed = 0;
};

}  // namespace
}  // namespace Korvel::Torture

/// KorvelMemoryTorture DEVIATIONS [CALL]: compares with the deviations in the file; tries only calls whose name holds
/// CALL.
int main(int argc, char** argv) try {
    Korvel::Torture::LearnCode();
    Korvel::TestRegistry registry;
    registry.SetText("10.0.0.1", "AccessKey", "first key");
    registry.SetText("10.0.0.2", "AccessKey", "second key");
    Korvel::Torture::Torture torture(argc > 2 ? argv[2] : "");
    torture.TryAll();
    torture.Print();
    const bool known = torture.AreKnown(argc > 1 ? argv[1] : "");
    return torture.AreMet() && known ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
