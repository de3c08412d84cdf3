#include "foundation/registry/regfile/KRegDocument.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>
#include <vector>

#include "foundation/registry/regfile/KRegEncoding.h"
#include "foundation/registry/regfile/KRegScanner.h"

namespace Korvel {

namespace {

constexpr std::string_view machine = "HKEY_LOCAL_MACHINE";

bool IsHive(std::string_view name) {
    static constexpr std::array<std::string_view, 5> hiveNames = {machine, "HKEY_CURRENT_USER", "HKEY_CLASSES_ROOT",
                                                                  "HKEY_USERS", "HKEY_CURRENT_CONFIG"};
    const KRegNode::NoCase less;
    return std::any_of(hiveNames.begin(), hiveNames.end(),
                       [&](std::string_view hive) { return !less(hive, name) && !less(name, hive); });
}

std::vector<unsigned char> TakeText(KRegScanner& scanner) {
    const std::string text = scanner.TakeQuoted();
    std::vector<unsigned char> bytes(text.begin(), text.end());
    bytes.push_back(0);
    return bytes;
}

std::vector<unsigned char> TakeNumber(KRegScanner& scanner) {
    const unsigned long number = scanner.TakeHex(8);
    std::vector<unsigned char> bytes;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        bytes.push_back(static_cast<unsigned char>(number >> shift & 0xffU));
    }
    return bytes;
}

std::vector<unsigned char> TakeData(KRegScanner& scanner) {
    if (scanner.Take("\"")) {
        return TakeText(scanner);
    }
    if (scanner.Take("dword:")) {
        return TakeNumber(scanner);
    }
    if (scanner.Take("hex:")) {
        return scanner.TakeHexBytes();
    }
    if (scanner.Take("hex(")) {
        scanner.TakeHex(8);  // the type: nobody asks for it
        if (scanner.Take("):")) {
            return scanner.TakeHexBytes();
        }
    }
    scanner.Fail("value is neither a text in quotes nor dword:, hex: or hex(TYPE):");
}

}  // namespace

std::string KRegDocument::ConfiguredPath() {
    const char* path = std::getenv("KORVEL_REGISTRY");
    return path == nullptr || *path == '\0' ? "/etc/korvel/registry.reg" : path;
}

KRegDocument::KRegDocument(const std::string& path) {
    KRegScanner scanner(path, KRegEncoding::Read(path));
    if (!scanner.NextLine() || !scanner.Take("Windows Registry Editor Version 5.00") || !scanner.Rest().empty()) {
        scanner.Fail("the first line is not \"Windows Registry Editor Version 5.00\"");
    }
    while (scanner.NextLine()) {
        if (scanner.Take("[")) {
            ReadKey(scanner);
        } else if (!scanner.Rest().empty() && !scanner.Rest().starts_with(';')) {
            ReadValue(scanner);
        }
        scanner.TakeEnd();
    }
    hives.Add(machine);  // the hive is there even if the file says nothing about it
}

const KRegNode* KRegDocument::Find(std::string_view path) const {
    // A path that begins with a backslash is no path below a hive.
    return path.starts_with('\\') ? nullptr : hives.Find(machine)->Find(path);
}

void KRegDocument::ReadKey(KRegScanner& scanner) {
    constexpr std::ptrdiff_t mostLevels = 512;  // the registry's own limit
    const bool remove = scanner.Take("-");
    const std::string path = scanner.TakeKey();
    const std::string hive = path.substr(0, path.find('\\'));
    if (!IsHive(hive)) {
        scanner.Fail("key doesn't begin with the name of a hive, such as HKEY_LOCAL_MACHINE");
    }
    if (std::count(path.begin(), path.end(), '\\') >= mostLevels) {
        scanner.Fail("key has more than " + std::to_string(mostLevels) + " levels");
    }
    section = nullptr;
    if (remove) {
        hives.Remove(path);
    } else {
        section = &hives.Add(path);
        section->line = section->line == 0 ? scanner.LineNumber() : section->line;
    }
}

void KRegDocument::ReadValue(KRegScanner& scanner) {
    std::string name;
    if (scanner.Take("\"")) {
        name = scanner.TakeQuoted();
    } else if (!scanner.Take("@")) {
        scanner.Fail("line is neither a key in brackets, nor a value, nor a comment");
    }
    if (!scanner.Take("=")) {
        scanner.Fail("no = after the value's name");
    }
    if (section == nullptr) {
        scanner.Fail("value belongs to no key");
    }
    if (scanner.Take("-")) {
        if (const auto found = section->values.find(name); found != section->values.end()) {
            section->values.erase(found);
        }
    } else {
        section->values.insert_or_assign(name, TakeData(scanner));
    }
}

}  // namespace Korvel
