#include "library/Session.h"

#include <algorithm>
#include <list>
#include <memory>

#include "configuration/AccessKey.h"
#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {

std::string AddressOf(KArray& array) {
    std::string* address = nullptr;
    array.GetIPAddress(address);
    return *address;
}

Session::Session(const Target& target) {
    std::for_each(target.addresses.begin(), target.addresses.end(), CheckAddress);
    if (target.key.IsGiven()) {
        UseUnconfigured(target);
    } else {
        UseConfigured(target);
    }
}

void Session::UseUnconfigured(const Target& target) {
    if (target.addresses.size() != 1) {
        throw Failure(ExitWrongUsage, "an access key belongs to one array: name it with --array");
    }
    arrays.push_back(std::make_shared<KArray>(target.addresses.front(), ReadAccessKey(target.key)));
}

void Session::UseConfigured(const Target& target) {
    const Configuration configuration = ReadConfiguration();
    for (const ConfiguredArray& array : configuration.arrays) {
        if (array.endsProcess) {
            throw Failure(ExitFailed, array.place + ": " + array.faults.front());
        }
    }
    if (layer.DiscoverArrays() != KStatusSuccess) {
        const std::string fault = configuration.FirstFault();
        problem = "not every configured array can be used: " +
                  (fault.empty() ? "the configuration cannot be read as it is" : fault) +
                  " ('korvelctl config check' tells more)";
    }
    UseDiscovered(configuration);
    if (!target.addresses.empty()) {
        KeepOnly(target.addresses);
    }
}

/// The layer and all it owns belong to one thread; arrays are asked on several. So each gets an array of its own, with
/// the key that the registry has for it.
void Session::UseDiscovered(const Configuration& configuration) {
    std::list<KArray*> discovered;
    layer.GetArrays(discovered);
    for (KArray* array : discovered) {
        const std::string address = AddressOf(*array);
        const ConfiguredArray* entry = configuration.Find(address);
        if (entry != nullptr && !entry->accessKey.empty()) {
            arrays.push_back(std::make_shared<KArray>(address, entry->accessKey));
        }
    }
}

void Session::KeepOnly(const std::vector<std::string>& addresses) {
    const auto isNamed = [&addresses](const SharedArray& array) {
        return std::find(addresses.begin(), addresses.end(), AddressOf(*array)) != addresses.end();
    };
    arrays.erase(std::stable_partition(arrays.begin(), arrays.end(), isNamed), arrays.end());
    for (const std::string& address : addresses) {
        const auto matches = [&address](const SharedArray& array) { return AddressOf(*array) == address; };
        if (std::none_of(arrays.begin(), arrays.end(), matches)) {
            throw problem.empty() ? Failure(ExitNotFound, "no array " + address + " is configured", address)
                                  : Failure(ExitFailed, "array " + address + " was not found: " + problem, address);
        }
    }
    problem.clear();
}

void Session::ReportProblem(Report& report) const {
    if (!problem.empty()) {
        report.AddProblem({problem});
    }
}

void Session::RequireArrays() const {
    if (arrays.empty()) {
        throw Failure(ExitFailed, problem.empty() ? "no array is configured" : problem);
    }
}

}  // namespace Korvel::Ctl
