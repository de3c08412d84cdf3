#include "configuration/FileReplacement.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <thread>

#include "crew/Patience.h"
#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"

namespace Korvel::Ctl {
namespace {

bool WriteAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(file, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return false;
        }
        bytes.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
    }
    return fsync(file) == 0;
}

}  // namespace

FileReplacement::FileReplacement(const std::string& filePath) : path(filePath) {
    std::error_code error;
    const std::filesystem::path resolved =
        std::filesystem::weakly_canonical(std::filesystem::absolute(filePath), error);
    if (!error) {
        path = resolved.string();
        std::filesystem::create_directory(resolved.parent_path(), error);
    }
    folder = open(std::filesystem::path(path).parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) {
        Fail("its folder cannot be used");
    }
    try {
        Lock();
    } catch (...) {
        close(folder);
        throw;
    }
}

FileReplacement::~FileReplacement() {
    if (!temporary.empty()) {
        unlink(temporary.c_str());
    }
    close(folder);
}

const std::string& FileReplacement::Write(const std::string& bytes) {
    std::string name = path + ".XXXXXX";
    const int file = mkostemp(name.data(), O_CLOEXEC);  // for its owner alone
    if (file < 0) {
        Fail("no file can be made beside it");
    }
    temporary = name;
    try {
        KeepOwner(file);
        if (!WriteAll(file, bytes)) {
            Fail("the new file cannot be written");
        }
    } catch (...) {
        close(file);
        throw;
    }
    if (close(file) != 0) {
        Fail("the new file cannot be written");
    }
    return temporary;
}

void FileReplacement::Commit() {
    if (rename(temporary.c_str(), path.c_str()) != 0) {
        Fail("it cannot be replaced");
    }
    temporary.clear();
    if (fsync(folder) != 0) {
        Fail("it was replaced, but that may not last if the power fails now");
    }
}

void FileReplacement::Lock() const {
    // An interruption just before a wait without end would be missed.
    constexpr std::chrono::milliseconds lookAgain(50);
    while (flock(folder, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK) {
            Fail("its folder cannot be used");
        }
        if (Patience::IsOver()) {
            throw Failure(Patience::WasInterrupted() ? ExitInterrupted : ExitFailed,
                          path + ": another program that changes it has not ended " + Patience::Reason() +
                              "; nothing was changed");
        }
        std::this_thread::sleep_for(lookAgain);
    }
}

void FileReplacement::Fail(const std::string& what) const {
    throw Failure(ExitFailed, path + ": " + what + ": " + std::generic_category().message(errno));
}

void FileReplacement::KeepOwner(int file) const {
    struct stat old {};
    if (stat(path.c_str(), &old) == 0 && (old.st_uid != geteuid() || old.st_gid != getegid()) &&
        fchown(file, old.st_uid, old.st_gid) != 0) {
        Fail("the new file cannot be given to the old one's owner");
    }
}

}  // namespace Korvel::Ctl
