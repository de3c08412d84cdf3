#include "terminal/StatusLine.h"

#include <algorithm>
#include <cstddef>
#include <iostream>

#include "terminal/System.h"
#include "text/DisplayWidth.h"
#include "text/Printable.h"

namespace Korvel::Ctl {

std::string StatusLine::shown;

bool StatusLine::IsUseful() {
    static const bool useful = ErrorIsTerminal();
    return useful;
}

void StatusLine::Show(const std::string& text) {
    const std::size_t columns = ErrorWidth() - 1;  // a line that wraps cannot be redrawn
    const std::string visible = Printable(text);
    const std::string line(FirstColumns(visible, columns));
    if (line == shown) {
        return;
    }
    // Blanks and not escape sequences, which a console of Windows has to be told to understand. What was shown may be
    // wider than the terminal is by now.
    const std::size_t width = DisplayWidth(line);
    const std::size_t before = std::clamp(DisplayWidth(shown), width, columns);
    std::cerr << '\r' << line << std::string(before - width, ' ') << '\r' << std::flush;
    shown = line;
}

void StatusLine::Clear() {
    Show({});
}

}  // namespace Korvel::Ctl
