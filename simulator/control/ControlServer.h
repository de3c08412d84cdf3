#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>

#include "Simulator.h"
#include "array/ArrayState.h"
#include "wire/LoopbackServer.h"

namespace Korvel::Sim {

/// The control interface: JSON over plain HTTP, to read and set the state, arm faults and read the journal.
class ControlServer : public LoopbackServer {
public:
    /// Controls `controlled`, which has to outlive it; `shutDown` is called when a client asks for the end.
    ControlServer(Simulator& controlled, const std::function<void()>& shutDown);

    ~ControlServer() override;

private:
    using Action = std::function<nlohmann::json(const httplib::Request&, const nlohmann::json&)>;

    static httplib::Server::Handler Plain(Action action);
    static httplib::Server::HandlerWithContentReader WithBody(Action action);
    void AddArrays();
    void AddFaults();
    ArrayState& StateOf(const httplib::Request& request) const;

    Simulator& simulator;
};

}  // namespace Korvel::Sim
