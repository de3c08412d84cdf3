#include "terminal/StatusLine.h"

#include <iostream>

#include "terminal/System.h"
#include "text/Printable.h"

namespace Korvel::Ctl {

std::string StatusLine::shown;

bool StatusLine::IsUseful() {
    static const bool useful = ErrorIsTerminal();
    return useful;
}

void StatusLine::Show(const std::string& text) {
    const std::string line = Printable(text).substr(0, ErrorWidth() - 1);  // a line that wraps cannot be redrawn
    if (line == shown) {
        return;
    }
    // Blanks and not escape sequences, which a console of Windows has to be told to understand.
    const std::string rest(shown.size() > line.size() ? shown.size() - line.size() : 0, ' ');
    std::cerr << '\r' << line << rest << '\r' << std::flush;
    shown = line;
}

void StatusLine::Clear() {
    Show({});
}

}  // namespace Korvel::Ctl
