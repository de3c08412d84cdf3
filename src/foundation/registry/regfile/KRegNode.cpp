#include "foundation/registry/regfile/KRegNode.h"

#include <algorithm>

namespace Korvel {

namespace {

constexpr char Lower(char character) noexcept {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

/// Cuts the first name off a path; empty if there is none.
std::string_view TakeName(std::string_view& path) noexcept {
    path.remove_prefix(std::min(path.find_first_not_of('\\'), path.size()));
    const std::string_view name = path.substr(0, path.find('\\'));
    path.remove_prefix(name.size());
    path.remove_prefix(std::min(path.find_first_not_of('\\'), path.size()));
    return name;
}

}  // namespace

bool KRegNode::NoCase::operator()(std::string_view left, std::string_view right) const noexcept {
    return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                        [](char a, char b) { return Lower(a) < Lower(b); });
}

KRegNode& KRegNode::Add(std::string_view path) {
    KRegNode* node = this;
    for (std::string_view name = TakeName(path); !name.empty(); name = TakeName(path)) {
        auto found = node->subkeys.find(name);
        if (found == node->subkeys.end()) {
            found = node->subkeys.emplace(name, std::make_unique<KRegNode>()).first;
            found->second->place = node->subkeysSeen++;
        }
        node = found->second.get();
    }
    return *node;
}

const KRegNode* KRegNode::Find(std::string_view path) const {
    const KRegNode* node = this;
    for (std::string_view name = TakeName(path); !name.empty(); name = TakeName(path)) {
        const auto found = node->subkeys.find(name);
        if (found == node->subkeys.end()) {
            return nullptr;
        }
        node = found->second.get();
    }
    return node;
}

void KRegNode::Remove(std::string_view path) {
    const auto found = subkeys.find(TakeName(path));
    if (found == subkeys.end()) {
        return;
    }
    if (path.empty()) {
        subkeys.erase(found);
    } else {
        found->second->Remove(path);
    }
}

std::vector<std::string> KRegNode::SubkeyNames() const {
    std::map<std::size_t, std::string> namesByPlace;
    for (const auto& [name, node] : subkeys) {
        namesByPlace.emplace(node->place, name);
    }
    std::vector<std::string> names;
    names.reserve(namesByPlace.size());
    for (const auto& placed : namesByPlace) {
        names.push_back(placed.second);
    }
    return names;
}

}  // namespace Korvel
