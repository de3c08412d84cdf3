#include "library/Operation.h"

namespace Korvel::Ctl {

std::string AddressOf(KArray& array) {
    std::string* address = nullptr;
    array.GetIPAddress(address);
    return *address;
}

std::string Explain(const std::exception& error) {
    const auto* failure = dynamic_cast<const KException*>(&error);
    std::string text = failure != nullptr ? failure->ErrorText() : error.what();
    if (text == "Failed to perform curl action") {
        text += " (no reply: is the address right, the array up, and no blank in a name?)";
    } else if (text == "List drives failed") {
        text += " (it does not accept the access key, or cannot list its drives)";
    }
    return text;
}

}  // namespace Korvel::Ctl
