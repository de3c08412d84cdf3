#include "crew/Progress.h"

namespace Korvel::Ctl {
namespace {

/// A number with its thousands told apart.
std::string Grouped(std::size_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3; at -= 3) {
        digits.insert(at - 3, 1, ',');
    }
    return digits;
}

}  // namespace

void Progress::Set(std::size_t done, std::size_t total, const char* things) {
    const std::lock_guard lock(access);
    doneCount = done;
    totalCount = total;
    counted = things;
}

std::string Progress::Text() const {
    const std::lock_guard lock(access);
    return totalCount == 0 ? "" : Grouped(doneCount) + " of " + Grouped(totalCount) + " " + counted;
}

}  // namespace Korvel::Ctl
