#pragma once

#include <string>

namespace Korvel::Ctl {

/// A line on stderr that is redrawn in place while the program waits, and gone when it goes on. Only on a terminal.
class StatusLine {
public:
    /// @return whether somebody could see it
    static bool IsUseful();

    /// Puts a text in the place of the one that is there.
    static void Show(const std::string& text);

    /// Wipes the line away.
    static void Clear();

    /// Wipes the line away at its end.
    struct Guard {
        Guard() = default;
        ~Guard() { Clear(); }
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;
    };

private:
    static std::string shown;
};

}  // namespace Korvel::Ctl
