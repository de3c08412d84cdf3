#include "terminal/Confirmation.h"

#include <iostream>

#include "crew/Patience.h"
#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"
#include "terminal/Answer.h"
#include "terminal/Interruption.h"
#include "terminal/System.h"
#include "text/Printable.h"

namespace Korvel::Ctl {
namespace {

constexpr std::size_t LongestAnswer = 64;

}  // namespace

void RequireConfirmable(bool yes) {
    if (!yes && !InputIsTerminal()) {
        throw Failure(ExitWrongUsage, "this cannot be undone: give --yes when there is no terminal to ask on");
    }
}

void Confirm(bool yes, const std::string& consequence, const std::vector<std::string>& items) {
    if (yes) {
        return;
    }
    const Patience::Pause pause;
    std::cerr << Printable(consequence) << '\n';
    for (const std::string& item : items) {
        std::cerr << "  " << Printable(item) << '\n';
    }
    std::cerr << "Type yes to go on: " << std::flush;
    const std::string answer = ReadLine(LongestAnswer);
    if (Interrupted()) {
        std::cerr << '\n';
        throw Failure(ExitInterrupted, "interrupted; nothing was changed");
    }
    if (answer != "yes") {
        throw Failure(ExitDeclined, "declined; nothing was changed");
    }
}

}  // namespace Korvel::Ctl
