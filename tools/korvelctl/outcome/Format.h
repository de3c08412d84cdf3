#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "outcome/RowWriter.h"

namespace Korvel::Ctl {

/// The form for people, which is taken when none is asked for.
inline constexpr const char* TextFormat = "text";

/// @return the names of the forms that a report can take on stdout, as --format takes them
std::vector<std::string> FormatNames();

/// @param name one of FormatNames()
/// @param output where the report goes; has to outlive the writer
/// @return what writes a report in that form
std::unique_ptr<RowWriter> MakeWriter(const std::string& name, std::ostream& output);

}  // namespace Korvel::Ctl
