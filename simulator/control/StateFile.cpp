#include "control/StateFile.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "control/JsonFields.h"

namespace Korvel::Sim {

std::vector<Inventory> StateFile::Read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    try {
        const nlohmann::json states = JsonFields::Parse(text);
        if (!states.is_array() || states.empty()) {
            throw std::invalid_argument("a list with the state of each array is expected");
        }
        std::vector<Inventory> inventories;
        for (const nlohmann::json& state : states) {
            inventories.push_back(Inventory::FromJson(state));
        }
        return inventories;
    } catch (const std::exception& error) {
        throw std::runtime_error(path + ": " + error.what());
    }
}

void StateFile::Write(const std::string& path, const std::vector<Inventory>& inventories) {
    nlohmann::json states = nlohmann::json::array();
    for (const Inventory& inventory : inventories) {
        states.push_back(inventory.ToJson());
    }
    const std::string beside = path + ".new";
    if (!(std::ofstream(beside, std::ios::trunc) << states.dump(2) << '\n').flush()) {
        std::filesystem::remove(beside);
        throw std::runtime_error("cannot write " + beside);
    }
    std::filesystem::rename(beside, path);
}

}  // namespace Korvel::Sim
