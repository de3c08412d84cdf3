// The simulator: its state and its faults as JSON, and the requests of its arrays with their forms. The first byte of
// the input chooses.

#include <libxml/parser.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "Require.h"
#include "array/ArrayState.h"
#include "array/Fill.h"
#include "array/Inventory.h"
#include "array/Routes.h"
#include "control/Fault.h"
#include "control/JsonFields.h"
#include "wire/Request.h"

namespace Korvel::Fuzz {
namespace {

template <typename Kind>
void ReadJson(const std::string& text) {
    Kind read;
    try {
        read = Kind::FromJson(Sim::JsonFields::Parse(text));
    } catch (const std::invalid_argument&) {
        return;
    } catch (const nlohmann::json::exception&) {
        return;
    }
    nlohmann::json written = read.ToJson();
    if constexpr (std::is_same_v<Kind, Sim::Fault>) {
        written.erase("id");  // what only the simulator says
        written.erase("fired");
    }
    Require(Kind::FromJson(Sim::JsonFields::Parse(written.dump())).ToJson().dump() == read.ToJson().dump(),
            "what is written can be read, and is the same");
}

/// A line with method and target, headers, an empty line, a body.
void Send(const std::string& text) {
    const std::size_t end = text.find("\n\n");
    const Sim::Request request = Sim::Request::FromHead(text.substr(0, end));
    request.Header("X-Access-Key");
    static const Sim::Inventory filled = Sim::Inventory::Filled({.volumes = 2, .snapshots = 1}, 0);
    Sim::ArrayState array(filled);
    const Sim::Reply reply = Sim::Routes::Answer(array, request.method, request.target,
                                                 end == std::string::npos ? "" : text.substr(end + 2));
    const std::unique_ptr<xmlDoc, void (*)(xmlDocPtr)> document(
        xmlReadMemory(reply.body->data(), static_cast<int>(reply.body->size()), "reply", nullptr,
                      XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET),
        xmlFreeDoc);
    Require(document != nullptr, ("a reply is XML: " + *reply.body).c_str());
    if (reply.status == 200) {
        const nlohmann::json state = array.Held().ToJson();
        Require(Sim::Inventory::FromJson(state).ToJson() == state, "what an array holds can be stored");
    }
}

}  // namespace
}  // namespace Korvel::Fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace Korvel;
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::string text = input.substr(input.empty() ? 0 : 1);
    switch (input.empty() ? 0 : input.front()) {
        case 's':
            Fuzz::ReadJson<Sim::Inventory>(text);
            break;
        case 'f':
            Fuzz::ReadJson<Sim::Fault>(text);
            break;
        default:
            Fuzz::Send(text);
    }
    return 0;
}
