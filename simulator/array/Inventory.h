#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "array/Fill.h"

namespace Korvel::Sim {

/// What an array holds. Plain data; its JSON form has the same names.
struct Inventory {
    /// A volume; it belongs to exactly one consistency group.
    struct Volume {
        std::string name;                   ///< the array's own name, used in commands
        std::string displayName;            ///< the name people gave it
        std::string ieeeId;                 ///< IEEE identifier, 32 hexadecimal digits
        std::string productId;              ///< product identifier with a dash
        std::string group;                  ///< consistency group
        std::vector<std::string> mappedTo;  ///< names of the servers it is mapped to
        std::string rolledBackTo;           ///< snapshot of the last rollback, empty if none
    };

    /// A snapshot of a consistency group.
    struct Snapshot {
        std::string name;         ///< the array's own name
        std::string displayName;  ///< the name it was asked for
    };

    /// A host.
    struct Server {
        std::string name;         ///< the array's own name
        std::string displayName;  ///< the name people gave it
        std::string iqn;          ///< iSCSI initiator name
        std::string iscsiIp;      ///< iSCSI address
    };

    /// A drive.
    struct Drive {
        std::string name;    ///< slot
        std::string health;  ///< "OK" or what is wrong
    };

    std::vector<Volume> volumes;
    std::map<std::string, std::vector<Snapshot>> snapshots;  ///< by consistency group
    std::vector<Server> servers;
    std::vector<Drive> drives;
    std::uint64_t nextNumber = 0;  ///< number of the next generated name

    /// Returns the inventory of the array with the number `array` (from 0), filled as `fill` says.
    static Inventory Filled(const Fill& fill, std::size_t array);

    /// Returns the inventory behind its JSON form; missing fields are empty.
    /// Throws std::invalid_argument on an unknown field, nlohmann's exception on a wrong type.
    static Inventory FromJson(const nlohmann::json& value);

    /// Returns the JSON form, which FromJson reads back.
    nlohmann::json ToJson() const;
};

}  // namespace Korvel::Sim
