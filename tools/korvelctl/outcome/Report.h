#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"
#include "outcome/Problem.h"
#include "outcome/RowWriter.h"

namespace Korvel::Ctl {

/// What a command has to show: a sentence, rows under columns, and what went wrong.
///
/// The first rows are held back for a moment, because a table's widths come from them; a longer list is written as it
/// is made.
class Report {
public:
    /// @param rowWriter the form in which the rows are written
    explicit Report(std::unique_ptr<RowWriter> rowWriter) : writer(std::move(rowWriter)) {}

    /// Names the columns. Call it before the first row.
    void SetColumns(std::vector<Column> reportColumns) { columns = std::move(reportColumns); }

    /// Sets the sentence that stands above the rows.
    void SetSentence(std::string text) { sentence = std::move(text); }

    /// Sets the sentence that stands there instead when there is neither a row nor a problem.
    void SetEmptySentence(const std::string& text);

    /// Appends a row: one text for each column, in their order.
    void AddRow(std::vector<std::string> cells);

    /// Adds something that went wrong; what is shown stays shown.
    void AddProblem(Problem problem) { problems.push_back(std::move(problem)); }

    /// Adds what ended a command, or a part of it.
    void AddProblem(const Failure& failure) { AddProblem({failure.what(), failure.Status(), failure.Array()}); }

    /// @return whether there is a row
    bool HasRows() const { return rowCount != 0; }

    /// @return what went wrong, in the order it was added
    const std::vector<Problem>& Problems() const { return problems; }

    /// Says that the rows tell what is wrong and are no results: problems beside them do not make a partial success.
    void SetRowsAreFindings() { rowsAreFindings = true; }

    /// @return the exit status: the gravest problem's, or ExitPartial when there are results beside a failure
    ExitStatus Status() const;

    /// Holds no rows back any longer.
    void ShowRows();

    /// Writes what is not written yet. Nothing may be added afterwards.
    void Finish();

private:
    void WriteHeld();

    std::unique_ptr<RowWriter> writer;
    std::vector<Column> columns;
    std::vector<std::vector<std::string>> held;
    std::string sentence;
    std::vector<Problem> problems;
    std::size_t rowCount = 0;
    bool rowsAreFindings = false;
    bool begun = false;
};

}  // namespace Korvel::Ctl
