#include "text/ArgumentCheck.h"

#include <KorvelAccessLibrary.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"

namespace Korvel::Ctl {
namespace {

constexpr std::size_t SchemeLength = std::string_view("https://").size();

[[noreturn]] void Refuse(std::string_view what, const std::string& reason) {
    throw Failure(ExitWrongUsage, "the " + std::string(what) + " " + reason);
}

bool IsControl(char character) {
    const auto code = static_cast<unsigned char>(character);
    return code < 0x20 || code == 0x7f;
}

void RefuseControls(std::string_view what, std::string_view text) {
    if (std::any_of(text.begin(), text.end(), IsControl)) {
        Refuse(what, "holds a control character");
    }
}

void RefuseAnyOf(std::string_view what, std::string_view text, std::string_view characters,
                 const std::string& consequence) {
    const std::size_t position = text.find_first_of(characters);
    if (position != std::string_view::npos) {
        Refuse(what, "'" + std::string(text) + "' holds a '" + text[position] + "', " + consequence);
    }
}

void RefuseLonger(std::string_view what, std::string_view text, std::size_t limit) {
    if (text.size() > limit) {
        Refuse(what,
               "has " + std::to_string(text.size()) + " characters; at most " + std::to_string(limit) + " can be sent");
    }
}

}  // namespace

void CheckPresent(std::string_view what, std::string_view text) {
    if (text.empty()) {
        Refuse(what, "is empty");
    }
}

void CheckAddress(std::string_view address) {
    CheckPresent("address", address);
    RefuseControls("address", address);
    RefuseAnyOf("address", address, " /\\?#@%&", "which no host name or IP address has");
    RefuseLonger("address", address, KMaxAddressLength);
}

void CheckAccessKey(std::string_view accessKey) {
    CheckPresent("access key", accessKey);
    RefuseControls("access key", accessKey);
    RefuseLonger("access key", accessKey, KMaxAccessKeyLength);
}

void CheckBodyText(std::string_view what, std::string_view text) {
    CheckPresent(what, text);
    RefuseControls(what, text);
    RefuseAnyOf(what, text, "&", "which would begin another field of the request: names are sent as they stand");
}

void CheckUnrepeated(const std::vector<std::string>& names) {
    for (auto name = names.begin(); name != names.end(); ++name) {
        if (std::find(names.begin(), name, *name) != name) {
            throw Failure(ExitWrongUsage, "'" + *name + "' is named twice");
        }
    }
}

void CheckPath(std::string_view what, std::string_view address, const RequestPath& path, std::string_view name) {
    const std::size_t around = SchemeLength + address.size() + path.before.size() + path.after.size();
    RefuseControls(what, name);
    RefuseAnyOf(what, name, "/?#%&", "which would change the request's path: names are sent as they stand");
    RefuseAnyOf(what, name, " ", "which the HTTP library does not send in a request's path");
    if (name == "." || name == "..") {
        Refuse(what, "'" + std::string(name) + "' would change the request's path");
    }
    if (around > KMaxUrlLength) {
        Refuse("address", "is too long for this request");
    }
    RefuseLonger(what, name, KMaxUrlLength - around);
}

}  // namespace Korvel::Ctl
