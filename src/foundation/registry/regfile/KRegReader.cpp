#include "foundation/registry/regfile/KRegReader.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/registry/regfile/KRegNode.h"

namespace Korvel {

namespace {

enum ValueType : unsigned long { Text = 1, Binary = 3, Number = 4 };  // the registry's own numbers

bool IsHive(std::string_view name) {
    static constexpr std::array<std::string_view, 5> hiveNames = {
        "HKEY_LOCAL_MACHINE", "HKEY_CURRENT_USER", "HKEY_CLASSES_ROOT", "HKEY_USERS", "HKEY_CURRENT_CONFIG"};
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

}  // namespace

KRegReader::KRegReader(const std::string& path, std::string text) : scanner(path, std::move(text)) {
    if (!scanner.NextLine() || !scanner.Take("Windows Registry Editor Version 5.00") || !scanner.Rest().empty()) {
        scanner.Fail("the first line is not \"Windows Registry Editor Version 5.00\"");
    }
}

bool KRegReader::Next(KRegStatement& statement) {
    while (scanner.NextLine()) {
        if (scanner.Rest().empty() || scanner.Rest().starts_with(';')) {
            continue;
        }
        KRegStatement read;
        read.line = scanner.LineNumber();
        read.begin = scanner.Position();
        if (scanner.Take("[")) {
            ReadKey(read);
        } else {
            ReadValue(read);
        }
        read.end = scanner.EndOfTaken();
        scanner.TakeEnd();
        statement = std::move(read);
        return true;
    }
    return false;
}

void KRegReader::ReadKey(KRegStatement& statement) {
    constexpr std::ptrdiff_t mostLevels = 512;  // the registry's own limit
    inKey = !scanner.Take("-");
    statement.kind = inKey ? KRegStatement::Kind::Key : KRegStatement::Kind::KeyRemoval;
    statement.name = scanner.TakeKey();
    if (!IsHive(std::string_view(statement.name).substr(0, statement.name.find('\\')))) {
        scanner.Fail("key doesn't begin with the name of a hive, such as HKEY_LOCAL_MACHINE");
    }
    if (std::count(statement.name.begin(), statement.name.end(), '\\') >= mostLevels) {
        scanner.Fail("key has more than " + std::to_string(mostLevels) + " levels");
    }
}

void KRegReader::ReadValue(KRegStatement& statement) {
    if (scanner.Take("\"")) {
        statement.name = scanner.TakeQuoted();
    } else if (!scanner.Take("@")) {
        scanner.Fail("line is neither a key in brackets, nor a value, nor a comment");
    }
    if (!scanner.Take("=")) {
        scanner.Fail("no = after the value's name");
    }
    if (!inKey) {
        scanner.Fail("value belongs to no key");
    }
    (void)scanner.Rest();  // the blanks before the data
    statement.data = scanner.Position();
    if (scanner.Take("-")) {
        statement.kind = KRegStatement::Kind::ValueRemoval;
    } else {
        statement.kind = KRegStatement::Kind::Value;
        ReadData(statement);
    }
}

void KRegReader::ReadData(KRegStatement& statement) {
    if (scanner.Take("\"")) {
        statement.type = Text;
        statement.bytes = TakeText(scanner);
    } else if (scanner.Take("dword:")) {
        statement.type = Number;
        statement.bytes = TakeNumber(scanner);
    } else if (scanner.Take("hex:")) {
        statement.type = Binary;
        statement.bytes = scanner.TakeHexBytes();
    } else {
        const bool typed = scanner.Take("hex(");
        statement.type = typed ? scanner.TakeHex(8) : 0;
        if (!typed || !scanner.Take("):")) {
            scanner.Fail("value is neither a text in quotes nor dword:, hex: or hex(TYPE):");
        }
        statement.bytes = scanner.TakeHexBytes();
    }
}

}  // namespace Korvel
