#include "crew/Patience.h"

#include <sstream>

#include "terminal/Interruption.h"

namespace Korvel::Ctl {

double Patience::limit = 0;
Patience::Clock::time_point Patience::deadline;

void Patience::Begin(double seconds) {
    limit = seconds;
    deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    CatchInterruptions();
}

bool Patience::IsOver() {
    return WasInterrupted() || (limit > 0 && Clock::now() >= deadline);
}

bool Patience::WasInterrupted() {
    return Interrupted();
}

std::string Patience::Reason() {
    if (WasInterrupted()) {
        return "before the interruption";
    }
    std::ostringstream text;
    text << "within " << limit << " s";
    return text.str();
}

}  // namespace Korvel::Ctl
