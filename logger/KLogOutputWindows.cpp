#include <windows.h>

#include "KLogOutput.h"

namespace Korvel {

namespace {

/// Rights to a new log file for the process's own user and nobody else. If one of the calls fails, the list of rights
/// stays empty: then others can't read the file, either.
class KOwnerOnly {
public:
    KOwnerOnly() noexcept {
        InitializeAcl(&rights.list, sizeof rights, ACL_REVISION);
        HANDLE token = nullptr;
        if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) != 0) {
            TokenUser user{};
            DWORD size = 0;
            if (GetTokenInformation(token, ::TokenUser, &user, sizeof user, &size) != 0) {
                AddAccessAllowedAce(&rights.list, ACL_REVISION, FILE_ALL_ACCESS, user.entry.User.Sid);
            }
            CloseHandle(token);
        }
        InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
        SetSecurityDescriptorDacl(&descriptor, TRUE, &rights.list, FALSE);
        SetSecurityDescriptorControl(&descriptor, SE_DACL_PROTECTED, SE_DACL_PROTECTED);
    }
    KOwnerOnly(const KOwnerOnly&) = delete;
    KOwnerOnly& operator=(const KOwnerOnly&) = delete;

    SECURITY_ATTRIBUTES* Get() noexcept { return &attributes; }

private:
    struct TokenUser {
        TOKEN_USER entry;
        BYTE sid[SECURITY_MAX_SID_SIZE];
    };
    struct Rights {
        ACL list;
        BYTE entry[sizeof(ACCESS_ALLOWED_ACE) + SECURITY_MAX_SID_SIZE];
    };

    Rights rights{};
    SECURITY_DESCRIPTOR descriptor{};
    SECURITY_ATTRIBUTES attributes{sizeof(SECURITY_ATTRIBUTES), &descriptor, FALSE};
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
