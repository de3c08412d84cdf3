#pragma once

#include <string>

namespace Korvel {

/// One host that an array knows by its iSCSI initiator name. A plain holder.
class KServer {
public:
    /// @param id the array's identifier of the server
    /// @param iqn the server's iSCSI initiator name (IQN)
    /// @param address the server's iSCSI address as the array reports it; may be empty
    /// @throws std::invalid_argument when the identifier or the initiator name is empty
    KServer(const std::string& id, const std::string& iqn, const std::string& address);
    ~KServer();
    KServer(const KServer&) = delete;
    KServer& operator=(const KServer&) = delete;

    std::string* serverID;     ///< owned; what attach and detach take
    std::string* hostIQN;      ///< owned
    std::string* iscsiIP;      ///< owned
    std::string* spareString;  ///< owned; always empty. Kept: spare-field.
};

}  // namespace Korvel
