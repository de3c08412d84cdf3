#pragma once

#include <mutex>
#include <utility>
#include <vector>

#include "crew/Progress.h"

namespace Korvel::Ctl {

/// What a task hands over while it works: items in their order, and how far it has come.
template <typename Item>
class Outbox {
public:
    /// Hands an item over. Called by the task.
    void Put(Progress& progress, Item item) {
        {
            const std::lock_guard lock(access);
            items.push_back(std::move(item));
        }
        progress.TellNews();
    }

    /// @return the items that were put since the last call
    std::vector<Item> TakeAll() {
        const std::lock_guard lock(access);
        return std::exchange(items, {});
    }

    /// @return whether there is an item to take
    bool HasItems() const {
        const std::lock_guard lock(access);
        return !items.empty();
    }

private:
    mutable std::mutex access;
    std::vector<Item> items;
};

}  // namespace Korvel::Ctl
