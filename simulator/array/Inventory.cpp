#include "array/Inventory.h"

#include <algorithm>
#include <cstdio>

#include "control/JsonFields.h"

namespace Korvel::Sim {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(Inventory::Volume, name, displayName, ieeeId, productId, group,
                                                mappedTo, rolledBackTo)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(Inventory::Snapshot, name, displayName)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(Inventory::Server, name, displayName, iqn, iscsiIp)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(Inventory::Drive, name, health)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(Inventory, volumes, snapshots, servers, drives, nextNumber)

namespace {

template <typename... Numbers>
std::string Text(const char* format, Numbers... numbers) {
    char text[96];
    static_cast<void>(std::snprintf(text, sizeof text, format, numbers...));
    return text;
}

template <typename Entry>
void RequireKnownFields(const nlohmann::json& entries) {
    const nlohmann::json known(Entry{});
    for (const auto& entry : entries) {
        JsonFields::RequireLike(entry, known);
    }
}

Inventory::Volume MakeVolume(std::size_t array, std::size_t number, std::size_t groups) {
    static const char* const purposes[] = {"sql-data", "sql-log", "mail", "files"};
    return {.name = Text("vol-%08zx", number),
            .displayName = Text("%s-%zu-%04zu", purposes[(number - 1) % 4], array + 1, number),
            .ieeeId = Text("6001f3a%05zx0000%016zx", array + 1, number),
            .productId = Text("%08zu-KV3", number),
            .group = Text("cg-%08zx", (number - 1) % groups + 1),
            .mappedTo = {},
            .rolledBackTo = {}};
}

}  // namespace

Inventory Inventory::Filled(const Fill& fill, std::size_t array) {
    Inventory inventory;
    const std::size_t groups = fill.groups == 0 ? fill.volumes : std::min(fill.groups, fill.volumes);
    std::size_t snapshot = 0;
    for (std::size_t number = 1; number <= fill.volumes; ++number) {
        inventory.volumes.push_back(MakeVolume(array, number, groups));
    }
    for (std::size_t group = 0; group < groups; ++group) {
        for (std::size_t i = 0; i < fill.snapshots; ++i) {
            ++snapshot;
            const Volume& volume = inventory.volumes[group];
            inventory.snapshots[volume.group].push_back(
                {Text("snap-%08zx", snapshot), Text("snap_%zu_%s", snapshot, volume.name.c_str())});
        }
    }
    for (std::size_t number = 1; number <= fill.servers; ++number) {
        inventory.servers.push_back({Text("srv-%08zx", number), Text("host-%04zu", number),
                                     Text("iqn.2011-03.example.korvel:host-%04zu", number),
                                     Text("10.20.%zu.%zu", number / 250 % 250, number % 250 + 1)});
    }
    for (std::size_t number = 1; number <= fill.drives; ++number) {
        inventory.drives.push_back({Text("1.%zu", number), "OK"});
    }
    inventory.nextNumber = std::max({fill.volumes, snapshot, fill.servers}) + 1;
    return inventory;
}

Inventory Inventory::FromJson(const nlohmann::json& value) {
    JsonFields::RequireLike(value, nlohmann::json(Inventory{}));
    JsonFields::Number(value, "nextNumber", 0);
    RequireKnownFields<Volume>(value.value("volumes", nlohmann::json::array()));
    for (const auto& group : value.value("snapshots", nlohmann::json::object())) {
        RequireKnownFields<Snapshot>(group);
    }
    RequireKnownFields<Server>(value.value("servers", nlohmann::json::array()));
    RequireKnownFields<Drive>(value.value("drives", nlohmann::json::array()));
    return value.get<Inventory>();
}

nlohmann::json Inventory::ToJson() const {
    return *this;
}

}  // namespace Korvel::Sim
