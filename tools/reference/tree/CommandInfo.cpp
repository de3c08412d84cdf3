#include "tree/CommandInfo.h"

namespace Korvel::Reference {

std::vector<OptionInfo> CommandInfo::Options() const {
    std::vector<OptionInfo> options;
    for (const OptionGroup& group : groups) {
        options.insert(options.end(), group.options.begin(), group.options.end());
    }
    return options;
}

std::string Summary(const std::string& description) {
    return description.substr(0, description.find_first_of(";:("));
}

}  // namespace Korvel::Reference
