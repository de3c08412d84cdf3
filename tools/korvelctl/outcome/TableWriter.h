#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "outcome/ExitStatus.h"
#include "outcome/Problem.h"
#include "outcome/RowWriter.h"

namespace Korvel::Ctl {

/// A table for people. Its columns are as wide as the first rows want them; a longer text further down pushes its row
/// to the right.
class TableWriter : public RowWriter {
public:
    /// @param stream where the table goes; has to outlive the writer
    explicit TableWriter(std::ostream& stream) : output(stream) {}

    void Begin(const std::vector<Column>& columns, const std::string& sentence,
               const std::vector<std::vector<std::string>>& firstRows) override;
    void Row(const std::vector<std::string>& cells) override;
    void End(const std::vector<Problem>& problems, ExitStatus status) override;

private:
    std::ostream& output;
    std::vector<std::size_t> widths;
};

}  // namespace Korvel::Ctl
