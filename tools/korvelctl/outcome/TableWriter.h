#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "outcome/RowWriter.h"

namespace Korvel::Ctl {

/// A table for people. Its columns are as wide as the first rows want them; a longer text further down pushes its row
/// to the right.
class TableWriter : public RowWriter {
public:
    /// @param stream where the table goes; has to outlive the writer
    /// @param colour whether states stand out: green when they are as they should be, red otherwise
    TableWriter(std::ostream& stream, bool colour) : output(stream), inColour(colour) {}

    void Begin(const std::vector<Column>& columns, const std::string& sentence,
               const std::vector<std::vector<std::string>>& firstRows) override;
    void Row(const std::vector<std::string>& cells) override;

private:
    void Line(const std::vector<std::string>& cells, bool coloured);

    std::ostream& output;
    bool inColour;
    std::vector<std::size_t> widths;
    std::vector<std::string> goodStates;
};

}  // namespace Korvel::Ctl
