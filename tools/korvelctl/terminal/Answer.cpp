#include "terminal/Answer.h"

#include <iostream>

#include "terminal/System.h"

namespace Korvel::Ctl {

std::string ReadLine(std::size_t bound) {
    std::string line;
    for (char byte = 0; line.size() <= bound && ReadByte(byte) && byte != '\n';) {
        line += byte;
    }
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    return line;
}

std::string ReadSecret(const std::string& prompt, std::size_t bound) {
    const auto hidden = HideTyping();  // first, since it drops what was typed before
    std::cerr << prompt << std::flush;
    return ReadLine(bound);
}

}  // namespace Korvel::Ctl
