#include "commands/VolumeReport.h"

#include "library/Operation.h"

namespace Korvel::Ctl {

void SetVolumeColumns(Report& report) {
    report.SetColumns(
        {{"Array", "array"}, {"Display name", "displayName"}, {"Name", "name"}, {"ID", "id"}, {"Group", "group"}});
}

std::vector<std::string> VolumeRow(const FoundVolume& found) {
    return {AddressOf(*found.array), found.DisplayName(), found.Name(), found.Id(), found.Group()};
}

std::string Described(const FoundVolume& found) {
    return "volume '" + found.DisplayName() + "' (" + found.Name() + ") on array " + AddressOf(*found.array);
}

}  // namespace Korvel::Ctl
