#include "commands/VolumeReport.h"

#include <utility>

namespace Korvel::Ctl {

void SetVolumeColumns(Report& report) {
    report.SetColumns(
        {{"Array", "array"}, {"Display name", "displayName"}, {"Name", "name"}, {"ID", "id"}, {"Group", "group"}});
}

std::vector<std::string> VolumeRow(std::string address, Volume volume) {
    std::vector<std::string> row;
    row.reserve(5);
    for (std::string* cell : {&address, &volume.displayName, &volume.name, &volume.id, &volume.group}) {
        row.push_back(std::move(*cell));
    }
    return row;
}

}  // namespace Korvel::Ctl
