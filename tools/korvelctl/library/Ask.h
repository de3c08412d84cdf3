#pragma once

#include <KorvelAccessLibrary.h>

#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
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

/// What one array has answered.
template <typename Item>
struct Answer {
    Outbox<Item> outbox;
    std::optional<Failure> failure;  // set before the task is done, read after
};

/// @return the task of asking one array
template <typename Item, typename Question>
Crew::Task TaskOf(const SharedArray& array, const Purpose& purpose, const Question& ask,
                  std::shared_ptr<Answer<Item>> answer) {
    return {AddressOf(*array), [array, answer = std::move(answer), purpose, ask](Progress& progress) {
                CollectXmlComplaints();
                try {
                    Answering<Item> answering{answer->outbox, progress};
                    ask(*array, answering);
                } catch (const Failure& failure) {
                    answer->failure = failure;
                } catch (const std::exception& error) {
                    answer->failure = FailureOf(AddressOf(*array), purpose, error);
                }
            }};
}

/// Waits for the next part of an answer and takes it.
/// @return how far the array is; while it runs there is more to take, unless nothing came
template <typename Item, typename Take>
std::pair<Crew::State, bool> TakePart(Crew& crew, std::size_t number, Answer<Item>& answer, const Take& take) {
    const Crew::State state = crew.Wait(number, [&answer] { return answer.outbox.HasItems(); });
    std::vector<Item> items = answer.outbox.TakeAll();
    for (Item& item : items) {
        take(std::move(item));
    }
    return {state, state != Crew::State::Done && !items.empty()};
}

/// Asks arrays at once and takes their answers in the order of the arrays, each part of an answer as soon as it is its
/// turn. An array that fails, or that has not answered when there is no patience left, is a miss.
/// @param ask runs on a thread of its own, perhaps longer than this call: it owns or shares what it uses.
///        Takes (KArray&, Answering<Item>&) and throws what the library throws, or a Failure
/// @param take takes (const SharedArray&, Item) of an answer
/// @param miss takes the Failure of an array, after what it answered before
template <typename Item, typename Question, typename Take, typename Miss>
void AskAll(const std::vector<SharedArray>& arrays, const Purpose& purpose, const Question& ask, Take take, Miss miss) {
    std::vector<std::shared_ptr<Answer<Item>>> answers;
    std::vector<Crew::Task> tasks;
    tasks.reserve(arrays.size());
    for (const SharedArray& array : arrays) {
        tasks.push_back(TaskOf(array, purpose, ask, answers.emplace_back(std::make_shared<Answer<Item>>())));
    }
    Crew crew(std::move(tasks));
    for (std::size_t i = 0; i < arrays.size(); ++i) {
        const auto takeItem = [&](Item item) { take(arrays[i], std::move(item)); };
        auto [state, isMore] = TakePart(crew, i, *answers[i], takeItem);
        while (isMore) {
            std::tie(state, isMore) = TakePart(crew, i, *answers[i], takeItem);
        }
        if (state != Crew::State::Done) {
            miss(Unanswered(AddressOf(*arrays[i]), purpose, state == Crew::State::Running));
        } else if (answers[i]->failure) {
            miss(*answers[i]->failure);
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
