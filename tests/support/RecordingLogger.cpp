#include "support/RecordingLogger.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <utility>
#include <vector>

namespace {

std::mutex guard;
std::string records;
std::function<void()> watch;

}  // namespace

void Logger::Write(int level, char* module, char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    std::vector<char> text(static_cast<std::size_t>(std::vsnprintf(nullptr, 0, format, arguments)) + 1);
    std::vsnprintf(text.data(), text.size(), format, again);
    va_end(again);
    va_end(arguments);
    const std::string writer(module);
    const std::lock_guard<std::mutex> lock(guard);
    if (watch) {
        watch();
    }
    records +=
        (writer == "Korvel.KAccessLibrary" ? "" : writer + ' ') + std::to_string(level) + ' ' + text.data() + '\n';
}

std::string Korvel::TakeRecords() {
    const std::lock_guard<std::mutex> lock(guard);
    return std::exchange(records, {});
}

void Korvel::WatchRecords(std::function<void()> watcher) {
    const std::lock_guard<std::mutex> lock(guard);
    watch = std::move(watcher);
}
