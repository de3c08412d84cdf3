#include "terminal/Confirmation.h"

#include <iostream>

#include "outcome/Failure.h"
#include "terminal/System.h"
#include "text/Printable.h"

namespace Korvel::Ctl {

void RequireConfirmable(bool yes) {
    if (!yes && !InputIsTerminal()) {
        throw Failure(ExitWrongUsage, "this cannot be undone: give --yes when there is no terminal to ask on");
    }
}

void Confirm(bool yes, const std::string& consequence) {
    if (yes) {
        return;
    }
    std::cerr << Printable(consequence) << "\nType yes to go on: " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    if (answer != "yes") {
        throw Failure(ExitFailed, "nothing was changed");
    }
}

}  // namespace Korvel::Ctl
