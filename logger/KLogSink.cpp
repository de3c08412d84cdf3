#include "KLogSink.h"

#include <charconv>
#include <cstdlib>
#include <string>
#include <system_error>
#include <type_traits>

#include "KLogText.h"

namespace Korvel {

static_assert(std::is_trivially_destructible_v<KLogSink>, "records are written until the process is gone");

namespace {

void Complain(const std::string& text) {
    KLogOutput::StandardError().Write("Korvel log: " + text + "\n");
}

std::string_view Setting(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string_view() : value;
}

int HighestLevel() {
    const std::string_view text = Setting("KORVEL_LOG_LEVEL");
    int level = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), level);
    if (!text.empty() && (error != std::errc() || end != text.data() + text.size())) {
        Complain("KORVEL_LOG_LEVEL is not a number: \"" + KLogText::Visible(text) + "\"; level 0 is used");
        return 0;
    }
    return level;
}

KLogOutput ChosenOutput() {
    const std::string_view path = Setting("KORVEL_LOG_FILE");
    if (path.empty()) {
        return KLogOutput::StandardError();
    }
    std::error_code error;
    const KLogOutput file = KLogOutput::AppendTo(path.data(), error);
    if (error) {
        Complain("can't open " + KLogText::Visible(path) + ": " + error.message() + "; standard error is used");
        return KLogOutput::StandardError();
    }
    return file;
}

}  // namespace

const KLogSink& KLogSink::Instance() {
    static const KLogSink instance;
    return instance;
}

KLogSink::KLogSink() : highestLevel(HighestLevel()), output(ChosenOutput()) {}

void KLogSink::Write(std::string_view record) const noexcept {
    if (!output.Write(record)) {
        KLogOutput::StandardError().Write(record);
    }
}

}  // namespace Korvel
