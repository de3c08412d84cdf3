#include "library/ServerSearch.h"

#include <optional>
#include <utility>

#include "library/Explanation.h"
#include "library/Listing.h"
#include "library/Purpose.h"
#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {

void FindOrRegisterServer(const std::vector<SharedArray>& arrays, const std::string& iqn, Report& report,
                          const std::function<void(const SharedArray&, const std::string&)>& take) {
    const auto miss = [&report](const Failure& failure) { report.AddProblem(failure); };
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
        [&](const SharedArray& array, const std::string& id) {
            const std::string address = AddressOf(*array);
            report.AddProblem({"array " + address + " has registered the host " + iqn, ExitDone, address});
            take(array, id);
        },
        miss);
}

}  // namespace Korvel::Ctl
