#pragma once

#include <cstdint>
#include <string_view>
#include <system_error>

namespace Korvel {

/// An open log file, or standard error. The file stays open until the process ends; copies mean the same file.
class KLogOutput {
public:
    static KLogOutput StandardError() noexcept;

    /// Opens a file to append to. A new file is for its owner's eyes only: records hold access keys.
    /// @param path the file's path, zero-terminated
    /// @param error why it couldn't be opened, or no error
    static KLogOutput AppendTo(const char* path, std::error_code& error) noexcept;

    /// Writes at the end. Bytes of other threads and processes never come between these as long as the system takes
    /// them at once, which it does for files.
    /// @return whether all was written
    bool Write(std::string_view bytes) const noexcept;

private:
    explicit KLogOutput(std::intptr_t opened) noexcept : handle(opened) {}

    std::intptr_t handle;  // a file descriptor or a HANDLE
};

}  // namespace Korvel
