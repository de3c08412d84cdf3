#include "Logger.h"

#include <cerrno>
#include <cstdarg>

#include "KLogSink.h"
#include "KLogText.h"

using namespace Korvel;

namespace {

void WriteRecord(int level, const char* module, const char* format, va_list arguments) {
    const KLogSink& sink = KLogSink::Instance();
    if (!sink.Takes(level)) {
        return;
    }
    try {
        sink.Write(KLogText::Record(std::chrono::system_clock::now(), level, module, format, arguments));
    } catch (...) {
        sink.Write("A log record is lost: out of memory\n");
    }
}

}  // namespace

// NOLINTNEXTLINE(cert-dcl50-cpp): this is how the product's logging library is called
void Logger::Write(int level, char* module, char* format, ...) {
    const int callersErrno = errno;
    va_list arguments;
    va_start(arguments, format);
    try {
        WriteRecord(level, module, format, arguments);
    } catch (...) {  // A log that can't be written is no reason to end the host process.
    }
    va_end(arguments);
    errno = callersErrno;
}
