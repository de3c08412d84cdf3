#include "foundation/registry/regfile/KRegError.h"

namespace Korvel {

KRegError::KRegError(const std::string& path, std::size_t line, const std::string& fault)
    : std::runtime_error(path + ":" + (line == 0 ? "" : std::to_string(line) + ":") + " " + fault) {}

}  // namespace Korvel
