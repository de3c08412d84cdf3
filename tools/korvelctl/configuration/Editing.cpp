#include "configuration/Editing.h"

#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"

namespace Korvel::Ctl {

void RefuseConfigured(const std::string& address) {
    throw Failure(
        ExitFailed,
        "array " + address + " is configured already: 'korvelctl config set-key " + address + "' changes its key",
        address);
}

void RefuseUnconfigured(const std::string& address) {
    throw Failure(ExitNotFound, "no array " + address + " is configured", address);
}

}  // namespace Korvel::Ctl
