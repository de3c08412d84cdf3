#include <KorvelAccessLibrary.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>

#include "configuration/Editing.h"
#include "configuration/FileReplacement.h"
#include "configuration/RegistryText.h"
#include "foundation/registry/regfile/KRegDocument.h"
#include "foundation/registry/regfile/KRegEncoding.h"
#include "foundation/registry/regfile/KRegError.h"
#include "foundation/registry/regfile/KRegNode.h"
#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"
#include "text/Utf8.h"

namespace Korvel::Ctl {
namespace {

constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view Utf16Mark = "\xFF\xFE";

std::string FirstBytes(const std::string& path) {
    char bytes[3] = {};
    std::ifstream(path, std::ios::binary).read(bytes, sizeof bytes);
    return {bytes, sizeof bytes};
}

void AppendUtf16(std::string& bytes, char32_t code) {
    const auto append = [&bytes](char32_t unit) {
        bytes += static_cast<char>(unit & 0xFFU);
        bytes += static_cast<char>(unit >> 8U);
    };
    if (code < 0x10000) {
        append(code);
    } else {
        append(0xD800 + ((code - 0x10000) >> 10U));
        append(0xDC00 + ((code - 0x10000) & 0x3FFU));
    }
}

/// @param old how the file begins that is replaced: the new one keeps its encoding
std::string Encode(std::string_view text, std::string_view old) {
    if (old.substr(0, 2) != Utf16Mark) {
        return std::string(old == Utf8Mark ? Utf8Mark : "") + std::string(text);
    }
    std::string bytes(Utf16Mark);
    while (!text.empty()) {
        const Utf8Character character = FirstCharacter(text);
        AppendUtf16(bytes, character.code);
        text.remove_prefix(character.size);
    }
    return bytes;
}

/// What was written is read again, as the library will read it, before it takes the old file's place.
void Verify(const std::string& path, const std::string& address, const std::string& accessKey) {
    const KRegDocument document(path);
    const KRegNode* root = document.Find(KRegistryRootKey);
    const KRegNode* array = root == nullptr ? nullptr : root->Find(address);
    std::string stored;
    if (array != nullptr) {
        if (const auto value = array->values.find(KAccessKeyValue); value != array->values.end()) {
            stored.assign(value->second.begin(), value->second.end());
        }
    }
    const bool wanted = !accessKey.empty();
    if ((array != nullptr) != wanted || (wanted && stored != accessKey + '\0')) {
        throw Failure(ExitWrongUsage, "the registry file's format has no way to write this");
    }
}

void RequireUtf8(std::string_view what, std::string_view text) {
    for (; !text.empty(); text.remove_prefix(FirstCharacter(text).size)) {
        if (!FirstCharacter(text).valid) {
            throw Failure(ExitWrongUsage, "the " + std::string(what) + " is not UTF-8, as a registry file's text is");
        }
    }
}

/// @param accessKey the array's key after the change; empty when it has no entry then
void Change(const std::string& address, const std::string& accessKey,
            const std::function<void(RegistryText& text)>& make) {
    RequireUtf8("address", address);
    RequireUtf8("access key", accessKey);
    FileReplacement file(KRegDocument::ConfiguredPath());
    try {
        const bool exists = std::filesystem::exists(file.Path());
        RegistryText text(file.Path(), exists ? KRegEncoding::Read(file.Path()) : RegistryText::Empty, address);
        make(text);
        Verify(file.Write(Encode(text.Text(), FirstBytes(file.Path()))), address, accessKey);
    } catch (const KRegError& error) {
        throw Failure(ExitFailed, error.what());
    }
    file.Commit();
}

}  // namespace

void AddConfiguredArray(const std::string& address, const std::string& accessKey) {
    Change(address, accessKey, [&](RegistryText& text) {
        if (text.HasArray()) {
            RefuseConfigured(address);
        }
        text.SetKey(accessKey);
    });
}

void RemoveConfiguredArray(const std::string& address) {
    Change(address, "", [&](RegistryText& text) {
        if (!text.HasArray()) {
            RefuseUnconfigured(address);
        }
        text.RemoveArray();
    });
}

void SetConfiguredKey(const std::string& address, const std::string& accessKey) {
    Change(address, accessKey, [&](RegistryText& text) {
        if (!text.HasArray()) {
            RefuseUnconfigured(address);
        }
        text.SetKey(accessKey);
    });
}

}  // namespace Korvel::Ctl
