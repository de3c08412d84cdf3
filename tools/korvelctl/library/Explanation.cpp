#include "library/Explanation.h"

#include <KorvelAccessLibrary.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <new>
#include <stdexcept>
#include <string_view>

#include "crew/Patience.h"
#include "library/XmlComplaints.h"
#include "outcome/ExitStatus.h"

namespace Korvel::Ctl {
namespace {

/// What a text of the library means.
struct Meaning {
    std::string_view beginning;  ///< of the library's text
    bool afterSending;           ///< whether the array may have carried out what it was asked for
    const char* explanation;     ///< in place of the library's text; null to leave it
    const char* hint = "";       ///< what else to say when nothing was to be changed
};

constexpr std::string_view UnreadableReply = "Failed to open the xml document";

constexpr Meaning Meanings[] = {
    {"Failed to perform curl action", true, "no reply", ": is the address right, the array up and its port reachable?"},
    {UnreadableReply, true, "the reply is not XML that can be read"},
    {"Failed to create xml path context", true, "there is too little memory to read the reply"},
    {"Failed to evaluate xPath expression", true, "there is too little memory to read the reply"},
    {"HTTP return code: 401", false, "the array does not accept the access key (401)"},
    {"HTTP return code: 502", true, nullptr},  // what stands before the array got no answer from it
    {"HTTP return code: 504", true, nullptr},
    {"List volume failed", true, "the array does not list its volumes"},  // a clone is looked for after it was made
    {"List servers failed", false, "the array does not list its servers: does it accept the access key?"},
    {"List drives failed", false, "it does not accept the access key, or cannot list its drives"},
    {"KVolume Constructor", true, "the array lists a volume without all of its identifier, name and group"},
    {"KServer Constructor", true, "the array names no identifier of the host"},
};

std::string TextOf(const std::exception& error) {
    const auto* failure = dynamic_cast<const KException*>(&error);
    return failure != nullptr ? failure->ErrorText() : error.what();
}

const Meaning* MeaningOf(std::string_view text) {
    const auto* meaning = std::find_if(std::begin(Meanings), std::end(Meanings), [text](const Meaning& candidate) {
        return text.substr(0, candidate.beginning.size()) == candidate.beginning;
    });
    return meaning == std::end(Meanings) ? nullptr : meaning;
}

/// The HTTP library heeds a proxy of the environment, which its failures do not tell.
std::string ProxyHint() {
    for (const char* name : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
        const char* proxy = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nothing changes the environment
        if (proxy != nullptr && *proxy != '\0') {
            std::string shown = proxy;
            if (const std::size_t host = shown.rfind('@'); host != std::string::npos) {
                shown.erase(0, host + 1);  // before it may stand a password
            }
            return std::string(" (the environment's ") + name + " leads to " + shown + ": is the array in no_proxy?)";
        }
    }
    return {};
}

bool MayHaveBeenDone(const std::exception& error) {
    if (const Meaning* meaning = MeaningOf(TextOf(error))) {
        return meaning->afterSending;
    }
    // What the library refuses it has not sent; what it says otherwise is the array's own word.
    return dynamic_cast<const std::invalid_argument*>(&error) == nullptr &&
           dynamic_cast<const KException*>(&error) == nullptr;
}

bool SaysItExists(std::string_view text) {
    return text.find("exist") != std::string_view::npos && text.find("not exist") == std::string_view::npos;
}

Failure Unknown(const std::string& address, const Purpose& purpose, const std::string& reason) {
    const std::string look = *purpose.lookHere == '\0' ? "no listing shows it: look at the array itself"
                                                       : std::string("look with 'korvelctl ") + purpose.lookHere +
                                                             " --array " + address + "'";
    return {ExitOutcomeUnknown,
            "array " + address + ": " + reason + ": the request to " + purpose.action + " may have been carried out; " +
                look + " before you repeat it",
            address};
}

}  // namespace

std::string Explain(const std::exception& error) {
    const std::string text = TextOf(error);
    if (text.empty()) {
        return "the array refuses and gives no reason";
    }
    const Meaning* meaning = MeaningOf(text);
    const std::string complaint = text == UnreadableReply ? TakeXmlComplaint() : "";
    return (meaning != nullptr && meaning->explanation != nullptr ? meaning->explanation : text) +
           (complaint.empty() ? "" : " (" + complaint + ")");
}

Failure FailureOf(const std::string& address, const Purpose& purpose, const std::exception& error) {
    const std::string explained = Explain(error);
    const std::string text = TextOf(error);
    const Meaning* meaning = MeaningOf(text);
    const bool unreached = meaning != nullptr && *meaning->hint != '\0';
    if (purpose.IsChange() && MayHaveBeenDone(error)) {
        return Unknown(address, purpose, explained + (unreached ? ProxyHint() : ""));
    }
    std::string hint = unreached ? meaning->hint + ProxyHint() : "";
    if (*purpose.whenTaken != '\0' && SaysItExists(text)) {
        hint = std::string(" (names carry the clock's second: ") + purpose.whenTaken + ")";
    }
    return {ExitFailed, "array " + address + ": " + explained + hint, address};
}

Failure Unanswered(const std::string& address, const Purpose& purpose, bool asked) {
    if (asked && purpose.IsChange()) {
        return Unknown(address, purpose, "no answer " + Patience::Reason());
    }
    const ExitStatus status = Patience::WasInterrupted() ? ExitInterrupted : ExitFailed;
    if (!asked) {
        return {status, "array " + address + " was not asked any more to " + purpose.action, address};
    }
    return {status, "array " + address + " has not answered " + Patience::Reason(), address};
}

void RequireSuccess(int status, const std::string& address, const Purpose& purpose) {
    if (status == KStatusFailure) {
        throw Unknown(address, purpose, "it replied, but the reply holds no answer");
    }
    if (status != KStatusSuccess) {  // a clone that was made, but is not listed
        throw Unknown(address, purpose, "it does not list what it was asked to make");
    }
}

}  // namespace Korvel::Ctl
