#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Korvel::Ctl {

/// A request path: what stands before and after the name it carries.
struct RequestPath {
    std::string_view before;
    std::string_view after;
};

inline constexpr RequestPath SnapshotSetPath{"/api/snapshots/snapshots_set", ""};
inline constexpr RequestPath DeleteSnapshotPath{"/api/snapshots/", ""};
inline constexpr RequestPath ClonePath{"/api/consistency_groups/", "/clone"};
inline constexpr RequestPath RollbackPath{"/api/consistency_groups/", "/rollback"};
inline constexpr RequestPath DeleteVolumePath{"/api/volumes/", ""};
inline constexpr RequestPath DetachPath{"/api/volumes/", "/detach"};
inline constexpr RequestPath AttachPath{"/api/servers/", "/volumes"};
inline constexpr RequestPath SnapshotListPath{"/api/consistency_groups/", "/snapshots"};

/// Refuses an empty text. Every check here throws Failure with ExitWrongUsage and says what is wrong and why.
/// @param what how the message calls the text, for example "volume name"
void CheckPresent(std::string_view what, std::string_view text);

/// Refuses an address that is too long or that would name another host or path than it seems to.
void CheckAddress(std::string_view address);

/// Refuses an access key that is empty, too long or not one line of text.
void CheckAccessKey(std::string_view accessKey);

/// Refuses a text that would change a form body: names are sent as they stand, so '&' would begin another field.
void CheckBodyText(std::string_view what, std::string_view text);

/// Refuses a list that holds a name twice.
void CheckUnrepeated(const std::vector<std::string>& names);

/// Refuses a name that would make a path lead elsewhere or that does not fit into the URL.
/// @param address the array's address; empty as long as it is not known
/// @param name the name the path carries; empty for a path without one
void CheckPath(std::string_view what, std::string_view address, const RequestPath& path, std::string_view name = {});

}  // namespace Korvel::Ctl
