#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Korvel {

/// A key of a registry that is held in memory: its values and the keys below it. Names are matched without regard to
/// ASCII case and keep the spelling they came with first.
class KRegNode {
public:
    struct NoCase {
        using is_transparent = void;
        bool operator()(std::string_view left, std::string_view right) const noexcept;
    };

    /// Values by name; the default value's name is empty.
    using Values = std::map<std::string, std::vector<unsigned char>, NoCase>;

    /// Finds a key, or brings it and its missing parents into being.
    /// @param path names with backslashes between them; as in the registry, more than one counts as one, and an empty
    ///        path is the key itself
    /// @return the key, owned by this one
    KRegNode& Add(std::string_view path);

    /// @param path as for Add()
    /// @return the key, owned by this one, or null if there is none
    const KRegNode* Find(std::string_view path) const;

    /// Removes a key with all below it, if there is one.
    /// @param path as for Add(), not empty
    void Remove(std::string_view path);

    /// @return the names of the keys directly below, in the order in which they came
    std::vector<std::string> SubkeyNames() const;

    Values values;
    std::size_t line = 0;  ///< where the key is first named in its file, from 1; 0 if only a deeper key names it

private:
    std::map<std::string, std::unique_ptr<KRegNode>, NoCase> subkeys;
    std::size_t subkeysSeen = 0;
    std::size_t place = 0;  // among its parent's subkeys
};

}  // namespace Korvel
