#pragma once

#include <string>
#include <string_view>

#include "foundation/registry/regfile/KRegNode.h"

namespace Korvel {

struct KRegStatement;

/// A registry that is kept in a file, in the registry editor's export format ("Windows Registry Editor Version 5.00").
///
/// Keys and values may be removed again (`[-KEY]`, `"name"=-`), a later value takes the place of an earlier one, and
/// comments begin with `;`. `hex` values of every type give their bytes as they stand.
class KRegDocument {
public:
    /// @return the file that is to be read: what the environment variable KORVEL_REGISTRY names, else
    ///         /etc/korvel/registry.reg
    static std::string ConfiguredPath();

    /// Reads a file, whole.
    /// @throws KRegError naming file, line and fault if it can't be read or any line is malformed
    explicit KRegDocument(const std::string& path);

    /// @param path the key's path below HKEY_LOCAL_MACHINE, with backslashes; an empty one is the hive itself
    /// @return the key, owned by this object, or null if there is none
    const KRegNode* Find(std::string_view path) const;

private:
    void Apply(const KRegStatement& statement);

    KRegNode hives;
    KRegNode* section = &hives;  // the key that the values which follow belong to
};

}  // namespace Korvel
