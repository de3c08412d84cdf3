#include "KSession.h"

#include <algorithm>
#include <list>

#include "ArgumentCheck.h"
#include "Configuration.h"

namespace Korvel::Ctl {

KSession::KSession(const Target& target) {
    std::for_each(target.addresses.begin(), target.addresses.end(), CheckAddress);
    if (target.key.IsGiven()) {
        UseUnconfigured(target);
    } else {
        UseConfigured(target);
    }
}

void KSession::UseUnconfigured(const Target& target) {
    if (target.addresses.size() != 1) {
        throw KFailure(ExitWrongUsage, "an access key belongs to one array: name it with --array");
    }
    unconfigured = std::make_unique<KArray>(target.addresses.front(), ReadAccessKey(target.key));
    arrays.push_back(unconfigured.get());
}

void KSession::UseConfigured(const Target& target) {
    const Configuration configuration = ReadConfiguration();
    for (const ConfiguredArray& array : configuration.arrays) {
        if (array.endsProcess) {
            throw KFailure(ExitFailed, array.place + ": " + array.faults.front());
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

void KSession::KeepOnly(const std::vector<std::string>& addresses) {
    const auto isNamed = [&addresses](KArray* array) {
        return std::find(addresses.begin(), addresses.end(), AddressOf(*array)) != addresses.end();
    };
    arrays.erase(std::stable_partition(arrays.begin(), arrays.end(), isNamed), arrays.end());
    for (const std::string& address : addresses) {
        const auto matches = [&address](KArray* array) { return AddressOf(*array) == address; };
        if (std::none_of(arrays.begin(), arrays.end(), matches)) {
            throw problem.empty() ? KFailure(ExitNotFound, "no array " + address + " is configured")
                                  : KFailure(ExitFailed, "array " + address + " was not found: " + problem);
        }
    }
    problem.clear();
}

void KSession::RequireArrays() const {
    if (arrays.empty()) {
        throw KFailure(ExitFailed, problem.empty() ? "no array is configured" : problem);
    }
}

std::string AddressOf(KArray& array) {
    std::string* address = nullptr;
    array.GetIPAddress(address);
    return *address;
}

std::string Explain(const std::exception& error) {
    const auto* failure = dynamic_cast<const KException*>(&error);
    std::string text = failure != nullptr ? failure->ErrorText() : error.what();
    if (text == "Failed to perform curl action") {
        text += " (no reply: is the address right, the array up, and no blank in a name?)";
    } else if (text == "List drives failed") {
        text += " (it does not accept the access key, or cannot list its drives)";
    }
    return text;
}

}  // namespace Korvel::Ctl
