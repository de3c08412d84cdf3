#include "library/ServerSearch.h"

#include <optional>
#include <utility>

#include "library/Explanation.h"
#include "library/Listing.h"
#include "library/Purpose.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {

void FindOrRegisterServer(const std::vector<SharedArray>& arrays, const std::string& iqn,
                          const std::function<void(const SharedArray&, const std::string&)>& take,
                          const std::function<void(const Failure&)>& miss) {
    CheckBodyText("initiator name", iqn);
    std::vector<SharedArray> unknowing;
    AskAll<std::optional<std::string>>(
        arrays, {"find the host " + iqn},
        [iqn](KArray& array, Answering<std::optional<std::string>>& answering) {
            answering.Put(FindServer(array, iqn));
        },
        [&](const SharedArray& array, const std::optional<std::string>& id) {
            if (id) {
                take(array, *id);
            } else {
                unknowing.push_back(array);
            }
        },
        miss);

    const Purpose purpose{"register the host " + iqn, "server list"};
    AskAll<std::string>(
        unknowing, purpose,
        [iqn, purpose](KArray& array, Answering<std::string>& answering) {
            std::string id;
            RequireSuccess(LookUp(array, &KArray::GetServerIDByIQN, &KArray::GetServerIDByIQNFromArray, iqn, id),
                           AddressOf(array), purpose);
            answering.Put(id);
        },
        take, miss);
}

std::string FindOrRegisterServer(const SharedArray& array, const std::string& iqn) {
    std::string found;
    FindOrRegisterServer(
        {array}, iqn, [&found](const SharedArray&, const std::string& id) { found = id; },
        [](const Failure& failure) { throw failure; });
    return found;
}

}  // namespace Korvel::Ctl
