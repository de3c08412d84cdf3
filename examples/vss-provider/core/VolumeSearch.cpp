#include "core/VolumeSearch.h"

#include <KorvelAccessLibrary.h>

#include <future>

#include "core/LibraryCalls.h"
#include "core/ProviderError.h"

namespace VssExample {
namespace {

enum class Where { Memory, Array };

/// One array's part. The worker's task shares the result, since it may end after everybody has given up on it.
struct Search {
    ArrayWorker& worker;
    std::shared_ptr<FoundVolume> result;
    std::future<void> done;
};

Search Begin(ArrayWorker& worker, const std::string& id, Where where) {
    const auto result = std::make_shared<FoundVolume>();
    return {worker, result, worker.Post([=, address = worker.Address()](Korvel::KArray& array) {
                Korvel::KVolume* volume = nullptr;  // null: a search on the array tells a miss by this pointer
                const int status =
                    where == Where::Array ? array.GetVolumeByIDFromArray(id, volume) : array.GetVolumeByID(id, volume);
                if (status == Korvel::KStatusSuccess && volume != nullptr) {
                    volume->GetVolumeName(result->volume);
                    volume->GetCgID(result->group);
                    result->array = address;
                }
            })};
}

FoundVolume Find(const std::vector<std::unique_ptr<ArrayWorker>>& workers, const std::string& id, Where where,
                 std::chrono::milliseconds patience, const Log& log) {
    std::vector<Search> searches;
    searches.reserve(workers.size());
    for (const auto& worker : workers) {
        searches.push_back(Begin(*worker, id, where));
    }
    FoundVolume found;
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (Search& search : searches) {
        try {
            if (!search.worker.Await(search.done, deadline)) {
                throw ProviderError(ProviderError::Kind::Veto, "it does not answer");
            }
            search.done.get();
            found = search.result->array.empty() ? found : *search.result;
        } catch (const std::exception& error) {
            log("array " + search.worker.Address() + " could not be searched for " + id + ": " + ReasonOf(error));
        }
    }
    return found;
}

}  // namespace

FoundVolume FindVolume(const std::vector<std::unique_ptr<ArrayWorker>>& workers, const std::string& id,
                       std::chrono::milliseconds patience, const Log& log) {
    if (id.empty()) {
        return {};
    }
    const FoundVolume known = Find(workers, id, Where::Memory, patience, log);
    return known.array.empty() ? Find(workers, id, Where::Array, patience, log) : known;
}

}  // namespace VssExample
