#include "library/VolumeSearch.h"

#include "library/Operation.h"
#include "outcome/Failure.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

/// A kind of key: how messages call it, and the pair of lookups it takes.
struct KeyKind {
    const char* what;
    const char* belongs;
    int (KArray::*plain)(const std::string&, KVolume*&);
    int (KArray::*fromArray)(const std::string&, KVolume*&);
};

const KeyKind& KindOf(VolumeKey key) {
    static constexpr KeyKind byId{"identifier", "volume with the identifier", &KArray::GetVolumeByID,
                                  &KArray::GetVolumeByIDFromArray};
    static constexpr KeyKind byName{"display name", "volume with the display name", &KArray::GetVolumeByDispName,
                                    &KArray::GetVolumeByDispNameFromArray};
    static constexpr KeyKind bySnapshot{"snapshot name", "volume that has the snapshot", &KArray::GetVolumeBySnapID,
                                        &KArray::GetVolumeBySnapIDFromArray};
    switch (key) {
        case VolumeKey::Id:
            return byId;
        case VolumeKey::Snapshot:
            return bySnapshot;
        case VolumeKey::DisplayName:
            break;
    }
    return byName;
}

std::string Joined(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : "; ") + text;
    }
    return joined;
}

}  // namespace

std::string FoundVolume::Name() const {
    std::string name;
    volume->GetVolumeName(name);
    return name;
}

std::string FoundVolume::DisplayName() const {
    std::string displayName;
    volume->GetVolumeDispName(displayName);
    return displayName;
}

std::string FoundVolume::Group() const {
    std::string group;
    volume->GetCgID(group);
    return group;
}

std::string FoundVolume::Id() const {
    std::string* identifier = nullptr;
    volume->GetVolumeID(identifier);
    return *identifier;
}

VolumeSearch SearchVolume(Session& session, VolumeKey key, const std::string& text) {
    const KeyKind& kind = KindOf(key);
    CheckPresent(kind.what, text);
    session.RequireArrays();
    VolumeSearch search;
    if (!session.Problem().empty()) {
        search.problems.push_back(session.Problem());
    }
    for (KArray* array : session.Arrays()) {
        try {
            KVolume* volume = nullptr;
            if (LookUp(*array, kind.plain, kind.fromArray, text, volume) == KStatusSuccess) {
                search.found.push_back({array, volume});
            }
        } catch (const std::exception& error) {
            search.problems.push_back("array " + AddressOf(*array) + ": " + Explain(error));
        }
    }
    return search;
}

FoundVolume FindOneVolume(Session& session, VolumeKey key, const std::string& text) {
    const VolumeSearch search = SearchVolume(session, key, text);
    const std::string wanted = std::string(KindOf(key).belongs) + " '" + text + "'";
    if (search.found.size() > 1) {
        std::vector<std::string> addresses;
        for (const FoundVolume& found : search.found) {
            addresses.push_back(AddressOf(*found.array));
        }
        throw Failure(ExitWrongUsage,
                      "a " + wanted + " is on more than one array (" + Joined(addresses) + "): name one with --array");
    }
    if (!search.problems.empty()) {
        throw Failure(ExitFailed,
                      (search.found.empty() ? "no " + wanted + " was found, but not every array could be asked: "
                                            : "cannot tell whether the " + wanted + " is on one array only: ") +
                          Joined(search.problems) + (search.found.empty() ? "" : " (name its array with --array)"));
    }
    if (search.found.empty()) {
        throw Failure(ExitNotFound, "there is no " + wanted);
    }
    return search.found.front();
}

}  // namespace Korvel::Ctl
