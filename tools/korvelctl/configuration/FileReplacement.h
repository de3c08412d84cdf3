#pragma once

#include <string>

namespace Korvel::Ctl {

/// A file that is replaced in one step: who reads it sees either the old one or the new one, whole, also after a loss
/// of power. While the object lives, no other one of the same folder does. The new file is its owner's alone; the
/// owner stays who it is.
class FileReplacement {
public:
    /// Waits for others that replace files of the folder, with Patience. A link is followed: what it leads to is
    /// replaced.
    /// @param filePath the file; it need not be there, its folder is made if the one above is there
    /// @throws Failure when the folder cannot be used, or not in time
    explicit FileReplacement(const std::string& filePath);
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    /// @return the file that is replaced
    const std::string& Path() const { return path; }

    /// Writes the new file beside the old one.
    /// @return its path, for a look at it before it takes the other's place
    /// @throws Failure when it cannot be written or given to the old one's owner
    const std::string& Write(const std::string& bytes);

    /// Puts the new file in the old one's place.
    /// @throws Failure when that cannot be done; the old file is then as it was
    void Commit();

private:
    void Lock() const;
    [[noreturn]] void Fail(const std::string& what) const;
    void KeepOwner(int file) const;

    std::string path;
    std::string temporary;  // empty when there is none
    int folder = -1;
};

}  // namespace Korvel::Ctl
