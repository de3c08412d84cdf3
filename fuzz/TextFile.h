#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

namespace Korvel::Fuzz {

/// A file that lives in memory, for what reads files by their names.
class TextFile {
public:
    TextFile() : descriptor(memfd_create("fuzz", MFD_CLOEXEC)), path("/proc/self/fd/" + std::to_string(descriptor)) {}
    ~TextFile() { close(descriptor); }
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;

    /// Replaces what the file holds.
    void Write(const std::string& text) const {
        if (ftruncate(descriptor, 0) != 0 ||
            pwrite(descriptor, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size())) {
            throw std::runtime_error("a file in memory cannot be written");
        }
    }

    const std::string& Path() const { return path; }

private:
    int descriptor;
    std::string path;
};

}  // namespace Korvel::Fuzz
