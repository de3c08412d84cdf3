#include <mutex>

#include "core/ProviderCore.h"
#include "core/ProviderError.h"
#include "provider/ProviderUnderTest.h"

namespace VssExample {

namespace {

template <typename Call>
std::string ResultOf(Call call) {
    try {
        call();
        return "ok";
    } catch (const ProviderError& error) {
        return error.kind == ProviderError::Kind::BadState   ? "bad state"
               : error.kind == ProviderError::Kind::NotFound ? "not found"
                                                             : "veto";
    }
}

class CoreUnderTest : public ProviderUnderTest {
public:
    std::string OnLoad() override {
        return ResultOf([&] { core.OnLoad(); });
    }
    std::string OnUnload() override { return core.OnUnload(true) ? "ok" : "busy"; }
    std::string AreLunsSupported(const Ids& ids, bool& supported) override {
        return ResultOf([&] { supported = core.AreLunsSupported(ids); });
    }
    std::string BeginPrepareSnapshot(const std::string& set, const std::string& snapshot, const Ids& ids) override {
        return ResultOf([&] { core.BeginPrepareSnapshot(set, snapshot, ids); });
    }
    std::string EndPrepareSnapshots(const std::string& set) override {
        return ResultOf([&] { core.EndPrepareSnapshots(set); });
    }
    std::string PreCommitSnapshots(const std::string& set) override {
        return ResultOf([&] { core.PreCommitSnapshots(set); });
    }
    std::string CommitSnapshots(const std::string& set) override {
        return ResultOf([&] { core.CommitSnapshots(set); });
    }
    std::string PostCommitSnapshots(const std::string& set, int /*count*/) override {
        return ResultOf([&] { core.PostCommitSnapshots(set); });
    }
    std::string GetTargetLuns(const Ids& sources, Ids& targets) override {
        return ResultOf([&] { targets = core.GetTargetLuns(sources); });
    }
    std::string LocateLuns(const Ids& targets) override {
        return ResultOf([&] { core.LocateLuns(targets); });
    }
    std::string OnLunEmpty(const std::string& target) override {
        return ResultOf([&] { core.OnLunEmpty(target); });
    }
    std::string AbortSnapshots(const std::string& set) override {
        return ResultOf([&] { core.AbortSnapshots(set); });
    }
    std::string Log() override {
        const std::lock_guard lock(mutex);
        return log;
    }
    std::chrono::milliseconds CommitPatience() const override { return patience.commit; }

private:
    std::mutex mutex;
    std::string log;
    ProviderCore::Patience patience{std::chrono::seconds(2), std::chrono::seconds(60)};
    ProviderCore core{[this](const std::string& line) {
                          const std::lock_guard lock(mutex);
                          log += line + '\n';
                      },
                      [] { return "iqn.2011-03.example.korvel:host-0001"; }, patience};
};

}  // namespace

std::unique_ptr<ProviderUnderTest> ProviderUnderTest::Make() {
    return std::make_unique<CoreUnderTest>();
}

}  // namespace VssExample
