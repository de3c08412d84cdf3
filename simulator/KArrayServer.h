#pragma once

#include <string>

#include "KArrayState.h"
#include "KFaults.h"
#include "KJournal.h"
#include "KLoopbackServer.h"
#include "KRoutes.h"

namespace Korvel {

/// One array on the network: checks the access key, meets its faults and writes the journal.
class KArrayServer : public KLoopbackServer {
public:
    /// `number` counts from 0. The TLS context, the faults and the journal are shared by all arrays and outlive them.
    KArrayServer(std::size_t number, KInventory inventory, SSL_CTX* tls, KFaults& faults, KJournal& journal);

    ~KArrayServer() override;

    /// Returns the array's access key.
    const std::string& Key() const { return key; }

    /// Returns what the array holds and does.
    KArrayState& State() { return state; }

protected:
    void AfterRequest(KWireStream& stream) override;

private:
    void Serve(const httplib::Request& request, httplib::Response& response, std::string body);
    KAnswer Execute(const KRequest& request);

    std::size_t number;
    std::string key;
    KArrayState state;
    KFaults& faults;
    KJournal& journal;
};

}  // namespace Korvel
