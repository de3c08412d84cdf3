#include "core/LibraryUse.h"

#include <KorvelAccessLibrary.h>

#include <mutex>

namespace VssExample {
namespace {

std::mutex mutex;
int users = 0;

}  // namespace

void BeginLibraryUse() {
    const std::lock_guard lock(mutex);
    if (users++ == 0) {
        Korvel::KAccessLayer::GlobalInit();
    }
}

void EndLibraryUse() {
    const std::lock_guard lock(mutex);
    if (--users == 0) {
        Korvel::KAccessLayer::GlobalCleanup();
    }
}

}  // namespace VssExample
