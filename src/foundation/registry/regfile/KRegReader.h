#pragma once

#include <string>

#include "foundation/registry/regfile/KRegScanner.h"
#include "foundation/registry/regfile/KRegStatement.h"

namespace Korvel {

/// Reads the text of a registry file, in the registry editor's export format ("Windows Registry Editor Version 5.00"),
/// one statement at a time.
class KRegReader {
public:
    /// @param path the file's path, for faults
    /// @param text UTF-8, as KRegEncoding gives it
    /// @throws KRegError naming file, line and fault if the first line isn't the format's own
    KRegReader(const std::string& path, std::string text);

    /// Reads the next statement.
    /// @return false after the last one; the statement is then left as it was
    /// @throws KRegError naming file, line and fault if any line up to it is malformed
    bool Next(KRegStatement& statement);

private:
    void ReadKey(KRegStatement& statement);
    void ReadValue(KRegStatement& statement);
    void ReadData(KRegStatement& statement);

    KRegScanner scanner;
    bool inKey = false;  // whether a value may come
};

}  // namespace Korvel
