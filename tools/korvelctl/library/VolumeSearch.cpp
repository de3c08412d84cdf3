#include "library/VolumeSearch.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "library/Listing.h"
#include "outcome/ExitStatus.h"
#include "outcome/Problem.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

/// How messages call a kind of key.
struct KeyName {
    const char* what;
    const char* belongs;
};

const KeyName& NameOf(VolumeKey key) {
    static constexpr KeyName byId{"identifier", "volume with the identifier"};
    static constexpr KeyName byName{"display name", "volume with the display name"};
    static constexpr KeyName bySnapshot{"snapshot name", "volume that has the snapshot"};
    return key == VolumeKey::Id ? byId : key == VolumeKey::Snapshot ? bySnapshot : byName;
}

std::string Described(const WantedVolume& wanted) {
    return std::string(NameOf(wanted.key).belongs) + " '" + wanted.text + "'";
}

/// A volume that matches, and the number of what it matches.
struct Match {
    std::size_t wanted;
    Volume volume;
};

/// What is looked for, from the text to its number.
class Wishes {
public:
    Wishes(const std::vector<WantedVolume>& wanted, VolumeKey key) {
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            if (wanted[i].key == key) {
                numbers.emplace(wanted[i].text, i);
            }
        }
    }

    bool AreDone() const { return numbers.empty(); }

    void PutMatches(const std::string& text, const Volume& volume, Answering<Match>& answering) const {
        const auto [first, last] = numbers.equal_range(text);
        for (auto wish = first; wish != last; ++wish) {
            answering.Put({wish->second, volume});
        }
    }

    void Forget(const std::string& text) { numbers.erase(text); }

private:
    std::multimap<std::string, std::size_t> numbers;
};

/// A snapshot belongs to its group; the group's first volume stands for it, as in the library's own lookup.
void SearchSnapshots(KArray& array, const std::vector<Volume>& volumes, Wishes wishes, Answering<Match>& answering) {
    const std::vector<const Volume*> groups = FirstOfGroups(volumes);
    for (std::size_t asked = 0; asked < groups.size() && !wishes.AreDone(); ++asked) {
        answering.progress.Set(asked, groups.size(), "groups asked");
        for (const Snapshot& snapshot : ListSnapshots(array, groups[asked]->group)) {
            wishes.PutMatches(snapshot.name, *groups[asked], answering);
            wishes.Forget(snapshot.name);
        }
    }
}

void SearchArray(KArray& array, const std::vector<WantedVolume>& wanted, Answering<Match>& answering) {
    const Wishes ids(wanted, VolumeKey::Id);
    const Wishes names(wanted, VolumeKey::DisplayName);
    const std::vector<Volume> volumes = ListVolumes(array);
    for (const Volume& volume : volumes) {
        ids.PutMatches(volume.id, volume, answering);
        names.PutMatches(volume.displayName, volume, answering);
    }
    SearchSnapshots(array, volumes, Wishes(wanted, VolumeKey::Snapshot), answering);
}

[[noreturn]] void RefuseSeveral(const WantedVolume& wanted, const std::vector<FoundVolume>& found) {
    std::string listed;
    std::set<std::string> addresses;
    for (const FoundVolume& candidate : found) {
        listed += (listed.empty() ? "" : "; ") + candidate.Described() + " with the identifier " + candidate.volume.id;
        addresses.insert(candidate.Address());
    }
    throw Failure(ExitWrongUsage, "there is more than one " + Described(wanted) + " (" + listed + "): name " +
                                      (addresses.size() > 1 ? "an array with --array" : "the volume with --id"));
}

[[noreturn]] void RefuseUncertain(const WantedVolume& wanted, bool found, const std::vector<Failure>& failures) {
    std::string reasons;
    for (const Failure& failure : failures) {
        reasons += (reasons.empty() ? "" : "; ") + std::string(failure.what());
    }
    throw Failure(failures.front().Status(),
                  found ? "cannot tell whether the " + Described(wanted) + " is on one array only: " + reasons +
                              " (name its array with --array)"
                        : "no " + Described(wanted) + " was found, but not every array could be asked: " + reasons,
                  failures.front().Array());
}

}  // namespace

std::string FoundVolume::Described() const {
    return "volume '" + volume.displayName + "' (" + volume.name + ") on array " + Address();
}

std::string NotFoundText(const WantedVolume& wanted) {
    std::string text = "there is no " + Described(wanted);
    const auto isCapital = [](char character) { return character >= 'A' && character <= 'F'; };
    if (wanted.key == VolumeKey::Id && std::any_of(wanted.text.begin(), wanted.text.end(), isCapital)) {
        text += "; identifiers are compared exactly, and this one has capitals: try small letters";
    }
    return text;
}

std::vector<const Volume*> FirstOfGroups(const std::vector<Volume>& volumes) {
    std::vector<const Volume*> firsts;
    std::set<std::string_view> seen;
    for (const Volume& volume : volumes) {
        if (!volume.group.empty() && seen.insert(volume.group).second) {
            firsts.push_back(&volume);
        }
    }
    return firsts;
}

VolumeSearch SearchVolumes(Session& session, const std::vector<WantedVolume>& wanted) {
    for (const WantedVolume& one : wanted) {
        CheckPresent(NameOf(one.key).what, one.text);
    }
    session.RequireArrays();
    VolumeSearch search;
    search.found.resize(wanted.size());
    if (!session.Problem().empty()) {
        search.failures.emplace_back(ExitFailed, session.Problem());
    }
    AskAll<Match>(
        session.Arrays(), {"find a volume"},
        [wanted](KArray& array, Answering<Match>& answering) { SearchArray(array, wanted, answering); },
        [&search](const SharedArray& array, Match match) {
            search.found[match.wanted].push_back({array, std::move(match.volume)});
        },
        [&search](const Failure& failure) { search.failures.push_back(failure); });
    return search;
}

std::vector<FoundVolume> FindVolumes(Session& session, const std::vector<WantedVolume>& wanted) {
    VolumeSearch search = SearchVolumes(session, wanted);
    std::vector<FoundVolume> volumes;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        std::vector<FoundVolume>& found = search.found[i];
        if (found.size() > 1) {
            RefuseSeveral(wanted[i], found);
        }
        if (!search.failures.empty()) {
            RefuseUncertain(wanted[i], !found.empty(), search.failures);
        }
        if (found.empty()) {
            throw Failure(ExitNotFound, NotFoundText(wanted[i]));
        }
        volumes.push_back(std::move(found.front()));
    }
    return volumes;
}

}  // namespace Korvel::Ctl
