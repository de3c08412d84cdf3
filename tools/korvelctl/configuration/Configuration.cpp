#include "configuration/Configuration.h"

#include <KorvelAccessLibrary.h>

#include <algorithm>

#include "outcome/Failure.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

template <typename Check>
void Judge(ConfiguredArray& array, Check check) {
    try {
        check();
    } catch (const Failure& failure) {
        array.faults.emplace_back(failure.what());
    }
}

void JudgeKey(ConfiguredArray& array) {
    if (!array.storedKey) {
        array.faults.emplace_back("the AccessKey value is missing");
        return;
    }
    if (array.storedKey->size() > KMaxStoredValueSize) {
        array.faults.emplace_back("the AccessKey value is larger than 256 bytes");
        return;
    }
    array.accessKey = array.storedKey->substr(0, array.storedKey->find('\0'));
    Judge(array, [&array] { CheckAccessKey(array.accessKey); });
    array.endsProcess = array.endsProcess || array.accessKey.size() > KMaxAccessKeyLength;
}

}  // namespace

const ConfiguredArray* Configuration::Find(const std::string& address) const {
    const auto found = std::find_if(arrays.begin(), arrays.end(),
                                    [&address](const ConfiguredArray& array) { return array.address == address; });
    return found == arrays.end() ? nullptr : &*found;
}

std::string Configuration::FirstFault() const {
    if (!faults.empty()) {
        return faults.front();
    }
    for (const ConfiguredArray& array : arrays) {
        if (!array.faults.empty()) {
            return array.place + ": " + array.faults.front();
        }
    }
    return {};
}

Configuration ReadConfiguration() {
    Configuration configuration = LoadConfiguration();
    for (ConfiguredArray& array : configuration.arrays) {
        Judge(array, [&array] { CheckAddress(array.address); });
        array.endsProcess = array.address.size() > KMaxAddressLength;
        JudgeKey(array);
    }
    return configuration;
}

}  // namespace Korvel::Ctl
