#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace VssExample {

/// The reference provider as the VSS service sees it: its core where there is no COM, the registered class where there
/// is. A call returns "ok" or the word for its failure: "bad state", "not found", "veto", "bad argument".
class ProviderUnderTest {
public:
    using Ids = std::vector<std::string>;

    /// @return a provider that is not loaded yet
    static std::unique_ptr<ProviderUnderTest> Make();

    virtual ~ProviderUnderTest() = default;

    virtual std::string OnLoad() = 0;
    virtual std::string OnUnload() = 0;
    virtual std::string AreLunsSupported(const Ids& ids, bool& supported) = 0;
    virtual std::string BeginPrepareSnapshot(const std::string& set, const std::string& snapshot, const Ids& ids) = 0;
    virtual std::string EndPrepareSnapshots(const std::string& set) = 0;
    virtual std::string PreCommitSnapshots(const std::string& set) = 0;
    virtual std::string CommitSnapshots(const std::string& set) = 0;
    virtual std::string PostCommitSnapshots(const std::string& set, int count) = 0;
    virtual std::string GetTargetLuns(const Ids& sources, Ids& targets) = 0;
    virtual std::string LocateLuns(const Ids& targets) = 0;
    virtual std::string OnLunEmpty(const std::string& target) = 0;
    virtual std::string AbortSnapshots(const std::string& set) = 0;

    /// @return what the administrator has been told so far
    virtual std::string Log() = 0;

    /// @return how long the provider waits for its arrays while writers hold still
    virtual std::chrono::milliseconds CommitPatience() const = 0;
};

}  // namespace VssExample
