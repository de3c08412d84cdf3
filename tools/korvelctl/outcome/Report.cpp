#include "outcome/Report.h"

#include <algorithm>
#include <utility>

namespace Korvel::Ctl {
namespace {

constexpr std::size_t MostHeldRows = 1000;

/// From the gravest to the mildest: what a script must not overlook comes first.
constexpr ExitStatus Gravity[] = {ExitOutcomeUnknown, ExitInterrupted, ExitPartial, ExitFailed,
                                  ExitWrongUsage,     ExitDeclined,    ExitNotFound};

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

void Report::SetEmptySentence(const std::string& text) {
    if (!HasRows() && problems.empty()) {
        sentence = text;
    }
}

ExitStatus Report::Status() const {
    const bool havingResults = HasRows() && !rowsAreFindings;
    for (const ExitStatus candidate : Gravity) {
        const auto ends = [&](const Problem& problem) {
            return problem.status == candidate ||
                   (candidate == ExitPartial && havingResults && problem.status != ExitDone);
        };
        if (std::any_of(problems.begin(), problems.end(), ends)) {
            return candidate;
        }
    }
    return ExitDone;
}

void Report::WriteHeld() {
    begun = true;
    writer->Begin(columns, sentence, held);
    for (const std::vector<std::string>& row : held) {
        writer->Row(row);
    }
    held.clear();
}

void Report::ShowRows() {
    if (!begun && HasRows()) {
        WriteHeld();
    }
}

void Report::Finish() {
    if (!begun) {
        WriteHeld();
    }
    writer->End(problems, Status());
}

}  // namespace Korvel::Ctl
