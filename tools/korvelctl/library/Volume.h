#pragma once

#include <KorvelAccessLibrary.h>

#include <string>

namespace Korvel::Ctl {

/// What an array lists of a volume.
struct Volume {
    std::string id;  ///< the IEEE identifier, which the host sees of its disk
    std::string name;
    std::string displayName;
    std::string group;

    /// @return the volume as the library takes it. It accepts no empty text, and the array may list a volume without
    ///         one that the operation does not need
    KVolume Known() const {
        const auto text = [](const std::string& listed) { return listed.empty() ? std::string("-") : listed; };
        return {text(id), text(name), text(displayName), text(group)};
    }
};

}  // namespace Korvel::Ctl
