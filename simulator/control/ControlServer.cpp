#include "control/ControlServer.h"

#include <charconv>
#include <optional>
#include <stdexcept>

#include "KVersion.h"
#include "array/ArrayState.h"
#include "array/Inventory.h"
#include "control/Fault.h"
#include "control/JsonFields.h"
#include "wire/Socket.h"

namespace Korvel::Sim {
namespace {

void Answer(httplib::Response& response, int status, const nlohmann::json& value) {
    response.status = status;
    response.set_content(value.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n",
                         "application/json");
}

template <typename Run>
void Guarded(httplib::Response& response, Run run) {
    try {
        Answer(response, 200, run());
    } catch (const std::out_of_range& error) {
        Answer(response, 404, {{"error", error.what()}});
    } catch (const std::exception& error) {
        Answer(response, 400, {{"error", error.what()}});
    }
}

/// Tells whether "host:port" is this machine by itself. A page in a browser can bring a name of its own to point here.
bool IsLoopback(std::string host) {
    host =
        host.substr(0, host.rfind(':') > host.rfind(']') || host.rfind(']') == std::string::npos ? host.rfind(':')
                                                                                                 : std::string::npos);
    return host == "localhost" || host == "[::1]" || Socket::ParseAddress(host).value_or(0) >> 24U == 127;
}

bool ComesFromHere(const httplib::Request& request) {
    const std::string origin = request.get_header_value("Origin");
    const std::size_t host = origin.find("://");
    return IsLoopback(request.get_header_value("Host")) &&
           (origin.empty() || (host != std::string::npos && IsLoopback(origin.substr(host + 3))));
}

std::uint64_t Number(const std::string& text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) {
        throw std::invalid_argument("not a number: " + text);
    }
    return number;
}

}  // namespace

ControlServer::ControlServer(Simulator& controlled, const std::function<void()>& shutDown)
    : LoopbackServer(nullptr), simulator(controlled) {
    set_pre_routing_handler([](const httplib::Request& request, httplib::Response& response) {
        if (ComesFromHere(request)) {
            return HandlerResponse::Unhandled;
        }
        Answer(response, 403, {{"error", "Host and Origin have to be this machine's own"}});
        return HandlerResponse::Handled;
    });
    AddArrays();
    AddFaults();
    Get("/health", Plain([](const auto&, const auto&) { return nlohmann::json{{"status", "ok"}}; }));
    Get("/version", Plain([](const auto&, const auto&) { return nlohmann::json{{"version", KORVEL_VERSION}}; }));
    Get("/journal", Plain([this](const auto& request, const auto&) {
            return simulator.WireJournal().ToJson(request.has_param("from") ? Number(request.get_param_value("from"))
                                                                            : 0);
        }));
    Delete("/journal", Plain([this](const auto&, const auto&) {
               simulator.WireJournal().Clear();
               return nlohmann::json::object();
           }));
    Post("/reset", WithBody([this](const auto&, const auto&) {
             simulator.Reset();
             return nlohmann::json::object();
         }));
    Post("/shutdown", WithBody([shutDown](const auto&, const auto&) {
             shutDown();
             return nlohmann::json::object();
         }));
    set_error_handler([](const httplib::Request&, httplib::Response& response) {
        if (response.body.empty()) {
            Answer(response, response.status, {{"error", "there is nothing of this method and path"}});
        }
    });
}

ControlServer::~ControlServer() {
    Stop();
}

void ControlServer::AddArrays() {
    Get("/arrays", Plain([this](const auto&, const auto&) {
            nlohmann::json all = nlohmann::json::array();
            for (const auto& array : simulator.Arrays()) {
                all.push_back({{"address", array->Address()}, {"key", array->Key()}});
            }
            return all;
        }));
    Get(R"(/arrays/(\d+)/state)",
        Plain([this](const auto& request, const auto&) { return StateOf(request).Held().ToJson(); }));
    Put(R"(/arrays/(\d+)/state)", WithBody([this](const auto& request, const auto& body) {
            StateOf(request).SetInventory(Inventory::FromJson(body));
            return nlohmann::json::object();
        }));
}

void ControlServer::AddFaults() {
    Get("/faults", Plain([this](const auto&, const auto&) { return simulator.ArmedFaults().ToJson(); }));
    Post("/faults", WithBody([this](const auto&, const auto& body) {
             Fault fault = Fault::FromJson(body);
             if (fault.array && *fault.array >= simulator.Arrays().size()) {
                 throw std::invalid_argument("there is no array " + std::to_string(*fault.array));
             }
             return nlohmann::json{{"id", simulator.ArmedFaults().Arm(std::move(fault))}};
         }));
    Get(R"(/faults/(\d+))", Plain([this](const auto& request, const auto&) {
            return simulator.ArmedFaults().Find(Number(request.matches[1])).ToJson();
        }));
    Delete(R"(/faults/(\d+))", Plain([this](const auto& request, const auto&) {
               simulator.ArmedFaults().Forget(Number(request.matches[1]));
               return nlohmann::json::object();
           }));
    Delete("/faults", Plain([this](const auto&, const auto&) {
               simulator.ArmedFaults().Clear();
               return nlohmann::json::object();
           }));
}

ArrayState& ControlServer::StateOf(const httplib::Request& request) const {
    const std::uint64_t number = Number(request.matches[1]);
    if (number >= simulator.Arrays().size()) {
        throw std::out_of_range("there is no array " + std::to_string(number));
    }
    return simulator.Arrays()[number]->State();
}

httplib::Server::Handler ControlServer::Plain(Action action) {
    return [action = std::move(action)](const httplib::Request& request, httplib::Response& response) {
        Guarded(response, [&] { return action(request, nlohmann::json()); });
    };
}

// The body is read here: the library would take what a client calls a form for one, and refuse it when it is long.
httplib::Server::HandlerWithContentReader ControlServer::WithBody(Action action) {
    return [action = std::move(action)](const httplib::Request& request, httplib::Response& response,
                                        const httplib::ContentReader& reader) {
        const std::optional<std::string> body = ReadBody(request, reader);
        if (!body) {
            Answer(response, 413, {{"error", "the body is too long"}});
            return;
        }
        Guarded(response, [&] { return action(request, body->empty() ? nlohmann::json() : JsonFields::Parse(*body)); });
    };
}

}  // namespace Korvel::Sim
