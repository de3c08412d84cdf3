#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/registry/regfile/KRegStatement.h"

namespace Korvel::Ctl {

/// @return a registry path that can be compared: lower case, one backslash between the names
std::string ComparablePath(std::string_view path);

/// @return whether a key is another or lies below it; both comparable
bool IsAtOrBelow(std::string_view path, std::string_view ancestor);

/// The text of a registry file in which one array's entry is changed. What does not belong to the entry stays as it is
/// to the byte, and so do comments, also those between the lines of the entry. Each object makes one change.
class RegistryText {
public:
    /// What a file without anything begins with.
    static const char Empty[];

    /// @param path the file's path, for faults
    /// @param content its text, UTF-8
    /// @param arrayAddress the array whose entry is meant
    /// @throws KRegError when it is malformed
    RegistryText(const std::string& path, std::string content, const std::string& arrayAddress);

    /// @return whether the array has an entry, with or without an access key
    bool HasArray() const;

    /// Stores the array's access key; adds the entry if there is none. A key that was stored twice is stored once
    /// afterwards.
    void SetKey(const std::string& accessKey);

    /// Removes the entry.
    void RemoveArray();

    /// @return the changed text
    const std::string& Text() const { return text; }

private:
    struct Entry {
        KRegStatement statement;
        std::string key;  // it stands in or names, comparable
    };

    bool IsAccessKey(const Entry& entry) const;
    std::size_t LineBegin(std::size_t position) const;
    std::size_t LineEnd(std::size_t position) const;
    std::string CommentsWithin(const KRegStatement& statement) const;
    void Replace(const KRegStatement& statement, const std::string& data);
    void Remove(const KRegStatement& statement);
    void Append(const std::string& value);

    std::string text;
    std::string address;
    std::string arrayKey;  // the entry's, comparable
    std::string lineEnd;
    std::vector<Entry> entries;
};

}  // namespace Korvel::Ctl
