#include "configuration/AccessKey.h"

#include <fstream>
#include <iostream>

#include "outcome/Failure.h"
#include "terminal/System.h"
#include "text/ArgumentCheck.h"

namespace Korvel::Ctl {
namespace {

std::string ReadFromFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string line;
    if (!file || (!std::getline(file, line) && !file.eof())) {
        throw Failure(ExitFailed, "the key file '" + path + "' cannot be read");
    }
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    return line;
}

std::string ReadFromInput() {
    const bool prompting = InputIsTerminal();
    if (prompting) {
        std::cerr << "Access key: " << std::flush;
    }
    std::string line = ReadHiddenLine();
    if (prompting) {
        std::cerr << '\n';
    }
    return line;
}

}  // namespace

std::string ReadAccessKey(const KeySource& source) {
    std::string accessKey = source.standardInput ? ReadFromInput() : ReadFromFile(source.file);
    CheckAccessKey(accessKey);
    return accessKey;
}

}  // namespace Korvel::Ctl
