#pragma once

#include <string>

#include "array/ArrayState.h"
#include "array/Inventory.h"
#include "array/Reply.h"
#include "control/Fault.h"
#include "control/Faults.h"
#include "control/Journal.h"
#include "wire/LoopbackServer.h"
#include "wire/Request.h"
#include "wire/WireStream.h"

namespace Korvel::Sim {

/// One array on the network: checks the access key, meets its faults and writes the journal.
class ArrayServer : public LoopbackServer {
public:
    /// `number` counts from 0. The TLS context, the faults and the journal are shared by all arrays and outlive them.
    ArrayServer(std::size_t number, Inventory inventory, SSL_CTX* tls, Faults& faults, Journal& journal);

    ~ArrayServer() override;

    /// Returns the array's access key.
    const std::string& Key() const { return key; }

    /// Returns what the array holds and does.
    ArrayState& State() { return state; }

protected:
    bool BeforeHandshake(WireStream& stream) override;
    void AfterRequest(WireStream& stream) override;

private:
    void Serve(const httplib::Request& request, httplib::Response& response, std::string body);
    void AnswerFaulted(WireStream& stream, httplib::Response& response, const Request& request, const Fault& fault);
    void End(WireStream& stream, const Fault& fault);
    Reply Execute(const Request& request);

    std::size_t number;
    std::string key;
    ArrayState state;
    Faults& faults;
    Journal& journal;
};

}  // namespace Korvel::Sim
