#pragma once

#include <functional>
#include <string>

namespace VssExample {

/// Writes a line for the administrator. It may be called from several threads at once.
using Log = std::function<void(const std::string&)>;

}  // namespace VssExample
