#pragma once

#include <KorvelAccessLibrary.h>

#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "crew/Crew.h"
#include "crew/Outbox.h"
#include "crew/Progress.h"
#include "library/Explanation.h"
#include "library/Purpose.h"
#include "library/XmlComplaints.h"
#include "outcome/Failure.h"

namespace Korvel::Ctl {

/// An array that is asked on a thread of its own. Shared with the thread, which may be left behind.
using SharedArray = std::shared_ptr<KArray>;

/// @return the array's address
std::string AddressOf(KArray& array);

/// What a question gets to say its answers with.
template <typename Item>
struct Answering {
    Outbox<Item>& outbox;
    Progress& progress;

    /// Hands over a part of the answer.
    void Put(Item item) { outbox.Put(progress, std::move(item)); }
};

/// Asks arrays at once and takes their answers in the order of the arrays, each part of an answer as soon as it is its
/// turn. An array that fails, or that has not answered when there is no patience left, is a miss.
/// @param ask runs on a thread of its own, perhaps longer than this call: it owns or shares what it uses.
///        Takes (KArray&, Answering<Item>&) and throws what the library throws, or a Failure
/// @param take takes (const SharedArray&, Item) of an answer
/// @param miss takes the Failure of an array, after what it answered before
template <typename Item, typename Question, typename Take, typename Miss>
void AskAll(const std::vector<SharedArray>& arrays, const Purpose& purpose, const Question& ask, Take take, Miss miss) {
    struct Answer {
        Outbox<Item> outbox;
        std::optional<Failure> failure;  // set before the task is done, read after
    };
    std::vector<std::shared_ptr<Answer>> answers;
    std::vector<Crew::Task> tasks;
    for (const SharedArray& array : arrays) {
        const auto& answer = answers.emplace_back(std::make_shared<Answer>());
        tasks.push_back({AddressOf(*array), [array, answer, purpose, ask](Progress& progress) {
                             CollectXmlComplaints();
                             try {
                                 Answering<Item> answering{answer->outbox, progress};
                                 ask(*array, answering);
                             } catch (const Failure& failure) {
                                 answer->failure = failure;
                             } catch (const std::exception& error) {
                                 answer->failure = FailureOf(AddressOf(*array), purpose, error);
                             }
                         }});
    }
    Crew crew(std::move(tasks));
    for (std::size_t i = 0; i < arrays.size(); ++i) {
        Answer& answer = *answers[i];
        for (bool waiting = true; waiting;) {
            const Crew::State state = crew.Wait(i, [&answer] { return answer.outbox.HasItems(); });
            std::vector<Item> items = answer.outbox.TakeAll();
            waiting = state != Crew::State::Done && !items.empty();
            for (Item& item : items) {
                take(arrays[i], std::move(item));
            }
            if (waiting) {
                continue;
            }
            if (state != Crew::State::Done) {
                miss(Unanswered(AddressOf(*arrays[i]), purpose, state == Crew::State::Running));
            } else if (answer.failure) {
                miss(*answer.failure);
            }
        }
    }
}

/// Asks one array and returns its answer.
/// @param ask as for AskAll, but takes (KArray&) and returns the answer
/// @throws Failure
template <typename Question>
auto AskOne(const SharedArray& array, const Purpose& purpose, const Question& ask) {
    using Answer = decltype(ask(*array));
    std::optional<Answer> result;
    AskAll<Answer>(
        {array}, purpose, [ask](KArray& asked, Answering<Answer>& answering) { answering.Put(ask(asked)); },
        [&result](const SharedArray&, Answer answer) { result = std::move(answer); },
        [](const Failure& failure) { throw failure; });
    return *std::move(result);
}

/// Looks something up the way the library means it: memory first, and the array only when memory does not know. The
/// library never makes the second call by itself.
/// @param plain the lookup in memory
/// @param fromArray its twin that asks the array
/// @param result as the lookups take it; a pointer must be null
/// @return the library's status
template <typename Result>
int LookUp(KArray& array, int (KArray::*plain)(const std::string&, Result&),
           int (KArray::*fromArray)(const std::string&, Result&), const std::string& key, Result& result) {
    const int status = (array.*plain)(key, result);
    return status == KStatusNotFound ? (array.*fromArray)(key, result) : status;
}

}  // namespace Korvel::Ctl
