// What korvelctl makes of texts from outside: names, addresses, key files, and what it shows.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Require.h"
#include "TextFile.h"
#include "configuration/AccessKey.h"
#include "outcome/Failure.h"
#include "text/ArgumentCheck.h"
#include "text/EditDistance.h"
#include "text/Printable.h"
#include "text/Utf8.h"

namespace Korvel::Fuzz {
namespace {

void Show(const std::string& text) {
    const std::string shown = Ctl::Printable(text);
    for (std::string_view rest = shown; !rest.empty();) {
        const Ctl::Utf8Character next = Ctl::FirstCharacter(rest);
        Require(next.valid && next.size <= rest.size(), "what is shown is UTF-8");
        Require(next.code >= 0x20 && (next.code < 0x7F || next.code > 0x9F), "no control character is shown");
        Require(next.code < 0x202A || next.code > 0x202E, "no mark of direction is shown");
        rest.remove_prefix(next.size);
    }
    Require(Ctl::Printable(shown) == shown, "what is shown can be shown");
}

template <typename Check>
bool Passes(Check check) {
    try {
        check();
        return true;
    } catch (const Ctl::Failure&) {
        return false;
    }
}

void CheckArguments(const std::string& text) {
    if (Passes([&] { Ctl::CheckAddress(text); })) {
        Require(text.find_first_of("/?#@ \\") == std::string::npos, "an address is a host and a port");
    }
    if (Passes([&] { Ctl::CheckAccessKey(text); })) {
        Require(text.find_first_of(std::string("\r\n\0", 3)) == std::string::npos, "a key is one line");
    }
    if (Passes([&] { Ctl::CheckBodyText("name", text); })) {
        Require(text.find('&') == std::string::npos, "a text is one field");
    }
    if (Passes([&] { Ctl::CheckPath("name", "array", Ctl::DetachPath, text); })) {
        Require(text.find_first_of("/?#") == std::string::npos, "a name is one part of a path");
    }
    const std::size_t middle = text.size() / 2;
    const std::string front = text.substr(0, middle);
    const std::string back = text.substr(middle);
    if (text.size() < 40) {
        const std::size_t distance = Ctl::EditDistance(front, back);
        Require(distance == Ctl::EditDistance(back, front), "a way back is as long");
        Require((distance == 0) == (front == back), "only the same is at no distance");
    }
    Require(Passes([&] { Ctl::CheckUnrepeated({front, back}); }) == (front != back), "a list holds a name once");
}

}  // namespace
}  // namespace Korvel::Fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace Korvel;
    static const Fuzz::TextFile file;
    const std::string text(reinterpret_cast<const char*>(data), size);
    Fuzz::Show(text);
    Fuzz::CheckArguments(text);
    file.Write(text);
    std::string key;
    if (Fuzz::Passes([&] { key = Ctl::ReadAccessKey({file.Path(), false}); })) {
        Fuzz::Require(Fuzz::Passes([&] { Ctl::CheckAccessKey(key); }), "a key that is read can be sent");
    }
    return 0;
}
