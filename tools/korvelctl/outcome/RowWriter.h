#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "outcome/ExitStatus.h"
#include "outcome/Problem.h"

namespace Korvel::Ctl {

/// Room for a row that is no extraordinary one.
inline constexpr std::size_t UsualLength = 256;

/// One column of a report: its heading for people and its key for scripts.
struct Column {
    std::string heading;
    std::string key;
    std::string goodState = {};  ///< in a column of states the one that is as it should be; empty in others
};

/// One form that a report can take on stdout. Rows come one at a time, so that a long list never stands in memory
/// twice.
class RowWriter {
public:
    RowWriter() = default;
    virtual ~RowWriter() = default;
    RowWriter(const RowWriter&) = delete;
    RowWriter& operator=(const RowWriter&) = delete;

    /// Writes what stands above the rows. Called once, before the first row and also when there is none.
    /// @param columns the columns; a row has one cell for each
    /// @param sentence what a person reads above the rows; may be empty
    /// @param firstRows the first rows, from which a table learns its widths; they are not written yet
    virtual void Begin(const std::vector<Column>& columns, const std::string& sentence,
                       const std::vector<std::vector<std::string>>& firstRows) = 0;

    /// Writes one row.
    virtual void Row(const std::vector<std::string>& cells) = 0;

    /// Writes what stands below the rows. Called once.
    virtual void End(const std::vector<Problem>& /*problems*/, ExitStatus /*status*/) {}
};

}  // namespace Korvel::Ctl
