#include <windows.h>

#include <vsserror.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "host/ProviderClient.h"
#include "provider/ProviderUnderTest.h"

namespace VssExample {

namespace {

std::string WordFor(HRESULT result) {
    switch (result) {
        case S_OK:
            return "ok";
        case VSS_E_BAD_STATE:
            return "bad state";
        case VSS_E_OBJECT_NOT_FOUND:
            return "not found";
        case VSS_E_PROVIDER_VETO:
            return "veto";
        case E_INVALIDARG:
            return "bad argument";
        default:
            return std::to_string(static_cast<unsigned long>(result));
    }
}

GUID GuidOf(const std::string& text) {
    GUID guid = {};
    const std::wstring wide(text.begin(), text.end());
    if (FAILED(CLSIDFromString(wide.c_str(), &guid))) {
        throw std::runtime_error(text + " is no GUID");
    }
    return guid;
}

/// Everything that a provider is given from outside, before the first is made.
class Setting {
public:
    Setting() {
        const char* library = std::getenv("KORVEL_VSS_LIBRARY");
        ProviderClient::Register(library == nullptr ? "KorvelVssExample.dll" : library);
        char folder[MAX_PATH] = {};
        char file[MAX_PATH] = {};
        GetTempPathA(MAX_PATH, folder);
        GetTempFileNameA(folder, "vss", 0, file);
        logFile = file;
        SetEnvironmentVariableA("KORVEL_VSS_LOG", file);
        const char name[] = "iqn.2011-03.example.korvel:host-0001";
        RegSetKeyValueA(HKEY_LOCAL_MACHINE, "SOFTWARE\\KorvelVssExample", "InitiatorName", REG_SZ, name, sizeof name);
    }
    ~Setting() {
        DeleteFileA(logFile.c_str());
        RegDeleteTreeA(HKEY_LOCAL_MACHINE, "SOFTWARE\\KorvelVssExample");
    }
    Setting(const Setting&) = delete;
    Setting& operator=(const Setting&) = delete;

    std::string logFile;
};

Setting& TheSetting() {
    static Setting setting;
    return setting;
}

class ComUnderTest : public ProviderUnderTest {
public:
    ComUnderTest() { std::ofstream(TheSetting().logFile, std::ios::trunc).flush(); }

    std::string OnLoad() override { return WordFor(client.OnLoad()); }
    std::string OnUnload() override { return WordFor(client.OnUnload(true)); }
    std::string AreLunsSupported(const Ids& ids, bool& supported) override {
        return WordFor(client.AreLunsSupported(ids, supported));
    }
    std::string BeginPrepareSnapshot(const std::string& set, const std::string& snapshot, const Ids& ids) override {
        return WordFor(client.BeginPrepareSnapshot(GuidOf(set), GuidOf(snapshot), ids));
    }
    std::string EndPrepareSnapshots(const std::string& set) override {
        return WordFor(client.Sets().EndPrepareSnapshots(GuidOf(set)));
    }
    std::string PreCommitSnapshots(const std::string& set) override {
        return WordFor(client.Sets().PreCommitSnapshots(GuidOf(set)));
    }
    std::string CommitSnapshots(const std::string& set) override {
        return WordFor(client.Sets().CommitSnapshots(GuidOf(set)));
    }
    std::string PostCommitSnapshots(const std::string& set, int count) override {
        return WordFor(client.Sets().PostCommitSnapshots(GuidOf(set), count));
    }
    std::string GetTargetLuns(const Ids& sources, Ids& targets) override {
        return WordFor(client.GetTargetLuns(sources, targets));
    }
    std::string LocateLuns(const Ids& targets) override { return WordFor(client.LocateLuns(targets)); }
    std::string OnLunEmpty(const std::string& target) override { return WordFor(client.OnLunEmpty(target)); }
    std::string AbortSnapshots(const std::string& set) override {
        return WordFor(client.Sets().AbortSnapshots(GuidOf(set)));
    }
    std::string Log() override {
        std::ifstream file(TheSetting().logFile);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::chrono::milliseconds CommitPatience() const override { return std::chrono::seconds(7); }

private:
    ProviderClient client;
};

}  // namespace

std::unique_ptr<ProviderUnderTest> ProviderUnderTest::Make() {
    TheSetting();
    return std::make_unique<ComUnderTest>();
}

}  // namespace VssExample
