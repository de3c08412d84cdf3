#pragma once

#include <string>

namespace Korvel::Ctl {

/// What an array lists of a host.
struct Server {
    std::string id;
    std::string iqn;
    std::string address;
};

}  // namespace Korvel::Ctl
