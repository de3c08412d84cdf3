#include "library/ServerSearch.h"

#include "library/Operation.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {

std::string FindOrRegisterServer(KArray& array, const std::string& iqn) {
    CheckBodyText("initiator name", iqn);
    std::string serverID;
    Perform(array, "find or register the host " + iqn, [&] {
        return LookUp(array, &KArray::GetServerIDByIQN, &KArray::GetServerIDByIQNFromArray, iqn, serverID);
    });
    return serverID;
}

}  // namespace Korvel::Ctl
