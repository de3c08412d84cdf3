#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>

#include "KLoopbackServer.h"
#include "KSimulator.h"

namespace Korvel {

/// The control interface: JSON over plain HTTP, to read and set the state, arm faults and read the journal.
class KControlServer : public KLoopbackServer {
public:
    /// Controls `controlled`, which has to outlive it; `shutDown` is called when a client asks for the end.
    KControlServer(KSimulator& controlled, const std::function<void()>& shutDown);

    ~KControlServer() override;

private:
    using Action = std::function<nlohmann::json(const httplib::Request&, const nlohmann::json&)>;

    static httplib::Server::Handler Plain(Action action);
    static httplib::Server::HandlerWithContentReader WithBody(Action action);
    void AddArrays();
    void AddFaults();
    KArrayState& StateOf(const httplib::Request& request) const;

    KSimulator& simulator;
};

}  // namespace Korvel
