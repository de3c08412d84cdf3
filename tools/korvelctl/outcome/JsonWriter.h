#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "outcome/ExitStatus.h"
#include "outcome/Problem.h"
#include "outcome/RowWriter.h"

namespace Korvel::Ctl {

/// One JSON object for scripts, whatever happened: the rows as objects whose members the columns' keys name, the
/// problems and the exit status. korvelctl.schema.json describes it.
class JsonWriter : public RowWriter {
public:
    /// @param stream where the object goes; has to outlive the writer
    explicit JsonWriter(std::ostream& stream) : output(stream) {}

    void Begin(const std::vector<Column>& columns, const std::string& sentence,
               const std::vector<std::vector<std::string>>& firstRows) override;
    void Row(const std::vector<std::string>& cells) override;
    void End(const std::vector<Problem>& problems, ExitStatus status) override;

private:
    void Element(const std::string& element);
    void EndList();

    std::ostream& output;
    std::vector<std::string> beginnings;  // what stands before each cell of a row
    bool first = true;
};

}  // namespace Korvel::Ctl
