#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "outcome/RowWriter.h"

namespace Korvel::Ctl {

/// Lines with tabs between the values, for scripts that read no JSON: the columns' keys, then the rows. Each line has
/// as many tabs as the first; what a value may not hold is written with a backslash.
class TsvWriter : public RowWriter {
public:
    /// @param stream where the lines go; has to outlive the writer
    explicit TsvWriter(std::ostream& stream) : output(stream) {}

    void Begin(const std::vector<Column>& columns, const std::string& sentence,
               const std::vector<std::vector<std::string>>& firstRows) override;
    void Row(const std::vector<std::string>& cells) override;

private:
    std::ostream& output;
};

}  // namespace Korvel::Ctl
