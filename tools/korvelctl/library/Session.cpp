#include "library/Session.h"

#include <algorithm>
#include <list>

#include "configuration/Configuration.h"
#include "library/Operation.h"
#include "outcome/Failure.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {

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
    unconfigured = std::make_unique<KArray>(target.addresses.front(), ReadAccessKey(target.key));
    arrays.push_back(unconfigured.get());
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
        problem = "not every configured array can be used: " + (fault.empty() ? "the library's log says why" : fault);
    }
    std::list<KArray*> found;
    layer.GetArrays(found);
    arrays.assign(found.begin(), found.end());
    if (!target.addresses.empty()) {
        KeepOnly(target.addresses);
    }
}

void Session::KeepOnly(const std::vector<std::string>& addresses) {
    const auto isNamed = [&addresses](KArray* array) {
        return std::find(addresses.begin(), addresses.end(), AddressOf(*array)) != addresses.end();
    };
    arrays.erase(std::stable_partition(arrays.begin(), arrays.end(), isNamed), arrays.end());
    for (const std::string& address : addresses) {
        const auto matches = [&address](KArray* array) { return AddressOf(*array) == address; };
        if (std::none_of(arrays.begin(), arrays.end(), matches)) {
            throw problem.empty() ? Failure(ExitNotFound, "no array " + address + " is configured")
                                  : Failure(ExitFailed, "array " + address + " was not found: " + problem);
        }
    }
    problem.clear();
}

void Session::RequireArrays() const {
    if (arrays.empty()) {
        throw Failure(ExitFailed, problem.empty() ? "no array is configured" : problem);
    }
}

}  // namespace Korvel::Ctl
