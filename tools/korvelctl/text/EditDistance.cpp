#include "text/EditDistance.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace Korvel::Ctl {

std::size_t EditDistance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char character : from) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t above = row[j + 1];
            row[j + 1] = std::min({above + 1, row[j] + 1, diagonal + (character == to[j] ? 0 : 1)});
            diagonal = above;
        }
    }
    return row.back();
}

}  // namespace Korvel::Ctl
