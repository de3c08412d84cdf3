#include "shell/EventLog.h"

#include <windows.h>

#include <fstream>
#include <mutex>

namespace VssExample {

namespace {

std::string LogFile() {
    char path[MAX_PATH] = {};
    const DWORD length = GetEnvironmentVariableA("KORVEL_VSS_LOG", path, sizeof path);
    return length < sizeof path ? std::string(path, length) : "";
}

}  // namespace

void WriteEvent(const std::string& line) noexcept try {
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    if (const HANDLE source = RegisterEventSourceA(nullptr, "KorvelVssExample"); source != nullptr) {
        const char* text = line.c_str();
        ReportEventA(source, EVENTLOG_WARNING_TYPE, 0, 1, nullptr, 1, 0, &text, nullptr);
        DeregisterEventSource(source);
    }
    if (const std::string file = LogFile(); !file.empty()) {
        std::ofstream(file, std::ios::app) << line << '\n';
    }
} catch (const std::exception&) {
    return;
}

}  // namespace VssExample
