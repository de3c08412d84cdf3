#include "foundation/registry/regfile/KRegEncoding.h"

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>
#include <type_traits>

#include "foundation/registry/regfile/KRegError.h"

namespace Korvel {

namespace {

constexpr std::size_t mostBytes = 64U << 20U;

struct KFileCloser {
    void operator()(std::FILE* file) const noexcept { (void)std::fclose(file); }
};

struct KConverterCloser {
    void operator()(iconv_t converter) const noexcept { iconv_close(converter); }
};
using KConverter = std::unique_ptr<std::remove_pointer_t<iconv_t>, KConverterCloser>;

std::string ReadBytes(const std::string& path) {
    // Nothing else is opened: a pipe would keep the caller waiting.
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(path, ignored);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
        throw KRegError(path, 0, "is not a regular file");
    }
    const std::unique_ptr<std::FILE, KFileCloser> file(std::fopen(path.c_str(), "rb"));
    if (file == nullptr) {
        throw KRegError(path, 0, std::generic_category().message(errno));
    }
    std::string bytes;
    char block[16384];
    for (std::size_t count = 1; count > 0 && bytes.size() <= mostBytes;) {
        count = std::fread(block, 1, sizeof block, file.get());
        bytes.append(block, count);
    }
    if (std::ferror(file.get()) != 0) {
        throw KRegError(path, 0, std::generic_category().message(errno));
    }
    if (bytes.size() > mostBytes) {
        throw KRegError(path, 0, "is longer than 64 MiB");
    }
    return bytes;
}

/// Finds what the converter lets pass although it is no character: a number above 0x10ffff.
std::size_t FindPastLastCharacter(std::string_view text) {
    for (std::size_t at = 0; at + 1 < text.size(); ++at) {  // such a lead byte is never the last
        const auto lead = static_cast<unsigned char>(text[at]);
        if (lead > 0xf4 || (lead == 0xf4 && static_cast<unsigned char>(text[at + 1]) > 0x8f)) {
            return at;
        }
    }
    return std::string_view::npos;
}

std::size_t LastLine(std::string_view text) {
    return 1 + static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace

std::string KRegEncoding::Read(const std::string& path) {
    const std::string bytes = ReadBytes(path);
    std::string text = Decode(path, bytes);
    if (const std::size_t zero = text.find('\0'); zero != std::string::npos) {
        throw KRegError(path, LastLine(std::string_view(text).substr(0, zero)), "a zero byte in a text file");
    }
    return text;
}

std::string KRegEncoding::Decode(const std::string& path, std::string_view bytes) {
    const char* encoding = "UTF-8";
    if (bytes.starts_with("\xff\xfe")) {
        encoding = "UTF-16LE";
        bytes.remove_prefix(2);
    } else if (bytes.starts_with("\xef\xbb\xbf")) {
        bytes.remove_prefix(3);
    }
    iconv_t opened = iconv_open("UTF-8", encoding);
    if (reinterpret_cast<std::intptr_t>(opened) == -1) {
        throw KRegError(path, 0, std::string("this system can't read ") + encoding);
    }
    const KConverter converter(opened);

    std::string text;
    char* input = const_cast<char*>(bytes.data());  // iconv's declaration lacks the const; it changes nothing
    std::size_t inputLeft = bytes.size();
    while (inputLeft > 0) {
        char block[16384];
        char* output = block;
        std::size_t outputLeft = sizeof block;
        const std::size_t result = iconv(converter.get(), &input, &inputLeft, &output, &outputLeft);
        const bool invalid = result == static_cast<std::size_t>(-1) && errno != E2BIG;
        text.append(block, sizeof block - outputLeft);
        if (invalid) {
            throw KRegError(path, LastLine(text), std::string("is not valid ") + encoding);
        }
    }
    if (const std::size_t bad = FindPastLastCharacter(text); bad != std::string::npos) {
        throw KRegError(path, LastLine(std::string_view(text).substr(0, bad)), "is not valid UTF-8");
    }
    return text;
}

}  // namespace Korvel
