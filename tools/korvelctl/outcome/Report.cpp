#include "outcome/Report.h"

#include <utility>

namespace Korvel::Ctl {
namespace {

constexpr std::size_t MostHeldRows = 1000;

}  // namespace

void Report::AddRow(std::vector<std::string> cells) {
    ++rowCount;
    if (begun) {
        writer->Row(cells);
        return;
    }
    held.push_back(std::move(cells));
    if (held.size() == MostHeldRows) {
        WriteHeld();
    }
}

void Report::WriteHeld() {
    begun = true;
    writer->Begin(columns, sentence, held);
    for (const std::vector<std::string>& row : held) {
        writer->Row(row);
    }
    held.clear();
}

void Report::Finish() {
    if (!begun) {
        WriteHeld();
    }
    writer->End(problems, Status());
}

}  // namespace Korvel::Ctl
