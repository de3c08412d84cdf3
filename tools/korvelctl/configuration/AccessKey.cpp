#include "configuration/AccessKey.h"

#include <KorvelAccessLibrary.h>

#include <fstream>
#include <iostream>
#include <string_view>

#include "crew/Patience.h"
#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"
#include "terminal/Answer.h"
#include "terminal/Interruption.h"
#include "terminal/System.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

/// More than any key takes, in UTF-16 and with the longest end of line; a larger file is none of ours to read.
constexpr std::size_t LongestFileStart = 2 * KMaxAccessKeyLength + 8;

bool StartsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

/// Editors and shells put a mark before a text, and some write two bytes for each character.
std::string WithoutEncoding(const std::string& path, const std::string& bytes) {
    if (StartsWith(bytes, "\xEF\xBB\xBF")) {
        return bytes.substr(3);
    }
    const bool littleEndian = StartsWith(bytes, "\xFF\xFE");
    if (!littleEndian && !StartsWith(bytes, "\xFE\xFF")) {
        return bytes;
    }
    std::string text;
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
        const char high = bytes[littleEndian ? i + 1 : i];
        const char low = bytes[littleEndian ? i : i + 1];
        if (high != '\0' || static_cast<unsigned char>(low) >= 0x80) {
            throw Failure(ExitFailed, "the key file '" + path +
                                          "' is UTF-16 text with characters beyond ASCII: store the key as UTF-8");
        }
        text += low;
    }
    return text;
}

std::string ReadFromFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string bytes(LongestFileStart, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file.is_open() || file.bad() || (file.fail() && !file.eof())) {
        throw Failure(ExitFailed, "the key file '" + path + "' cannot be read");
    }
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    const std::string text = WithoutEncoding(path, bytes);
    std::string line = text.substr(0, text.find_first_of("\r\n"));
    if (line.find('\0') != std::string::npos) {
        throw Failure(ExitFailed, "the key file '" + path +
                                      "' is no text, or UTF-16 without a byte-order mark: store the key as UTF-8");
    }
    return line;
}

std::string ReadFromInput() {
    const bool prompting = InputIsTerminal();
    const Patience::Pause pause;
    constexpr std::size_t bound = KMaxAccessKeyLength + 1;  // with the '\r' of a line's end
    std::string line = prompting ? ReadSecret("Access key: ", bound) : ReadLine(bound);
    if (prompting) {
        std::cerr << '\n';
    }
    if (Interrupted()) {
        throw Failure(ExitInterrupted, "interrupted; nothing was asked");
    }
    return line;
}

}  // namespace

std::string ReadAccessKey(const KeySource& source) {
    std::string accessKey = source.standardInput ? ReadFromInput() : ReadFromFile(source.file);
    CheckAccessKey(accessKey);
    return accessKey;
}

std::string ReadNewAccessKey(KeySource source) {
    if (!source.IsGiven() && !InputIsTerminal()) {
        throw Failure(ExitWrongUsage,
                      "give the access key by --key-file or --key-stdin: there is no terminal to ask on");
    }
    source.standardInput = source.file.empty();
    return ReadAccessKey(source);
}

}  // namespace Korvel::Ctl
