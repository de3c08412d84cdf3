#pragma once

#include <string>
#include <vector>

#include "array/Inventory.h"

namespace Korvel::Sim {

/// A file with what arrays hold: a JSON list with one state for each.
class StateFile {
public:
    /// Reads the file. Throws std::runtime_error, which names the file and what is wrong, when it is no such list.
    static std::vector<Inventory> Read(const std::string& path);

    /// Replaces the file in one step. Throws std::runtime_error when it cannot be written; it is as before then.
    static void Write(const std::string& path, const std::vector<Inventory>& inventories);
};

}  // namespace Korvel::Sim
