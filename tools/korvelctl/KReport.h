#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "KFailure.h"

namespace Korvel::Ctl {

/// One column of a report: its heading for people and its key for scripts.
struct Column {
    std::string heading;
    std::string key;
};

/// What a command has to show: a sentence, and rows under columns.
///
/// For people it is the sentence and a table; for scripts a JSON list with one object a row.
class KReport {
public:
    explicit KReport(std::vector<Column> reportColumns) : columns(std::move(reportColumns)) {}

    /// Appends a row: one text for each column, in their order.
    void AddRow(std::vector<std::string> cells) { rows.push_back(std::move(cells)); }

    /// Sets the sentence that stands above the table.
    void SetSentence(std::string text) { sentence = std::move(text); }

    /// Adds something that went wrong, for stderr; what is shown stays shown. The command then ends with `endStatus`.
    void AddProblem(std::string text, ExitStatus endStatus = ExitFailed);

    /// @return whether there is a row
    bool HasRows() const { return !rows.empty(); }

    /// @return what went wrong, in the order it was added
    const std::vector<std::string>& Problems() const { return problems; }

    /// @return the exit status: ExitDone unless a problem set another
    ExitStatus Status() const { return status; }

    /// Writes the sentence and the table, or the JSON list.
    void Print(std::ostream& output, bool asJson) const;

private:
    void PrintTable(std::ostream& output) const;
    void PrintJson(std::ostream& output) const;

    std::vector<Column> columns;
    std::vector<std::vector<std::string>> rows;
    std::string sentence;
    std::vector<std::string> problems;
    ExitStatus status = ExitDone;
};

/// Makes control characters visible, so that a name an array sends cannot steer the terminal.
std::string Printable(std::string_view text);

}  // namespace Korvel::Ctl
