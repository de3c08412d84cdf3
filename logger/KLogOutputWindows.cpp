#include <windows.h>
// windows.h comes first: sddl.h needs it.
#include <sddl.h>

#include "KLogOutput.h"

namespace Korvel {

namespace {

/// What a new log file may be used for, and by whom: by its owner, for all.
class KOwnerOnly {
public:
    KOwnerOnly() noexcept {
        // Where the rights of an owner can't be put into words, the folder's own rights have to do.
        if (ConvertStringSecurityDescriptorToSecurityDescriptorA("D:P(A;;FA;;;OW)", SDDL_REVISION_1, &descriptor,
                                                                 nullptr) == 0) {
            descriptor = nullptr;
        }
        attributes = {sizeof attributes, descriptor, FALSE};
    }
    ~KOwnerOnly() { LocalFree(descriptor); }
    KOwnerOnly(const KOwnerOnly&) = delete;
    KOwnerOnly& operator=(const KOwnerOnly&) = delete;

    SECURITY_ATTRIBUTES* Get() noexcept { return &attributes; }

private:
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    SECURITY_ATTRIBUTES attributes{};
};

// One lock for all outputs: a record that a pipe takes in pieces stays in one piece. Needs no destructor.
SRWLOCK oneAtATime = SRWLOCK_INIT;

}  // namespace

KLogOutput KLogOutput::StandardError() noexcept {
    return KLogOutput(reinterpret_cast<std::intptr_t>(GetStdHandle(STD_ERROR_HANDLE)));
}

KLogOutput KLogOutput::AppendTo(const char* path, std::error_code& error) noexcept {
    KOwnerOnly ownerOnly;
    // Without the right to write elsewhere, the system itself puts every write at the end.
    const HANDLE file =
        CreateFileA(path, FILE_APPEND_DATA | SYNCHRONIZE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    ownerOnly.Get(), OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    error = file == INVALID_HANDLE_VALUE ? std::error_code(static_cast<int>(GetLastError()), std::system_category())
                                         : std::error_code();
    return KLogOutput(reinterpret_cast<std::intptr_t>(file));
}

bool KLogOutput::Write(std::string_view bytes) const noexcept {
    const DWORD callersError = GetLastError();
    AcquireSRWLockExclusive(&oneAtATime);
    while (!bytes.empty()) {
        const auto piece = static_cast<DWORD>(bytes.size() < MAXDWORD ? bytes.size() : MAXDWORD);
        DWORD written = 0;
        if (WriteFile(reinterpret_cast<HANDLE>(handle), bytes.data(), piece, &written, nullptr) == 0 || written == 0) {
            break;
        }
        bytes.remove_prefix(written);
    }
    ReleaseSRWLockExclusive(&oneAtATime);
    SetLastError(callersError);
    return bytes.empty();
}

}  // namespace Korvel
