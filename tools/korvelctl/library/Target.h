#pragma once

#include <string>
#include <vector>

#include "configuration/AccessKey.h"

namespace Korvel::Ctl {

/// Which arrays a command is to ask: all that are configured, some of them, or one that is not in the registry.
struct Target {
    std::vector<std::string> addresses;
    KeySource key;
};

}  // namespace Korvel::Ctl
