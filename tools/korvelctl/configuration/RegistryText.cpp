#include "configuration/RegistryText.h"

#include <KorvelAccessLibrary.h>

#include <algorithm>
#include <utility>

#include "foundation/registry/regfile/KRegReader.h"

namespace Korvel::Ctl {
namespace {

using Kind = KRegStatement::Kind;

std::string RootPath() {
    return "HKEY_LOCAL_MACHINE\\" + std::string(KRegistryRootKey);
}

std::string Quoted(std::string_view plain) {
    std::string quoted = "\"";
    for (const char character : plain) {
        quoted += character == '"' || character == '\\' ? "\\" : "";
        quoted += character;
    }
    return quoted + '"';
}

std::string LineEndOf(std::string_view text) {
    const std::string_view firstLine = text.substr(0, text.find('\n'));
    return !firstLine.empty() && firstLine.back() == '\r' ? "\r\n" : "\n";
}

}  // namespace

const char RegistryText::Empty[] = "Windows Registry Editor Version 5.00\n";

std::string ComparablePath(std::string_view path) {
    std::string comparable;
    for (const char character : path) {
        if (character != '\\' || (!comparable.empty() && comparable.back() != '\\')) {
            comparable += character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
        }
    }
    if (!comparable.empty() && comparable.back() == '\\') {
        comparable.pop_back();
    }
    return comparable;
}

bool IsAtOrBelow(std::string_view path, std::string_view ancestor) {
    return path.substr(0, ancestor.size()) == ancestor &&
           (path.size() == ancestor.size() || path[ancestor.size()] == '\\');
}

RegistryText::RegistryText(const std::string& path, std::string content, const std::string& arrayAddress)
    : text(std::move(content)),
      address(arrayAddress),
      arrayKey(ComparablePath(RootPath() + '\\' + arrayAddress)),
      lineEnd(LineEndOf(text)) {
    KRegReader reader(path, text);
    std::string key;
    for (KRegStatement statement; reader.Next(statement);) {
        if (statement.kind == Kind::Key || statement.kind == Kind::KeyRemoval) {
            key = ComparablePath(statement.name);
        }
        entries.push_back({std::move(statement), key});
    }
}

bool RegistryText::HasArray() const {
    bool has = false;
    for (const Entry& entry : entries) {
        if (entry.statement.kind == Kind::Key && IsAtOrBelow(entry.key, arrayKey)) {
            has = true;
        } else if (entry.statement.kind == Kind::KeyRemoval && IsAtOrBelow(arrayKey, entry.key)) {
            has = false;
        }
    }
    return has;
}

void RegistryText::SetKey(const std::string& accessKey) {
    const KRegStatement* header = nullptr;
    const KRegStatement* stored = nullptr;  // the one that counts
    std::vector<const KRegStatement*> accessKeys;
    for (const Entry& entry : entries) {
        if (entry.statement.kind == Kind::KeyRemoval && IsAtOrBelow(arrayKey, entry.key)) {
            header = stored = nullptr;
        } else if (entry.statement.kind == Kind::Key && entry.key == arrayKey) {
            header = &entry.statement;
        } else if (IsAccessKey(entry)) {
            stored = &entry.statement;
            accessKeys.push_back(stored);
        }
    }
    const std::string value = std::string("\"") + KAccessKeyValue + "\"=" + Quoted(accessKey);
    if (header == nullptr) {
        Append(value);
    } else if (stored == nullptr) {
        text.insert(LineEnd(header->end), lineEnd + value);
    }
    // From the back, so that the places of what stands before hold.
    for (std::size_t i = accessKeys.size(); i-- > 0;) {
        if (accessKeys[i] == stored) {
            Replace(*stored, Quoted(accessKey));
        } else {
            Remove(*accessKeys[i]);
        }
    }
}

void RegistryText::RemoveArray() {
    for (std::size_t i = entries.size(); i-- > 0;) {
        if (IsAtOrBelow(entries[i].key, arrayKey)) {
            Remove(entries[i].statement);
        }
    }
}

bool RegistryText::IsAccessKey(const Entry& entry) const {
    const bool isValue = entry.statement.kind == Kind::Value || entry.statement.kind == Kind::ValueRemoval;
    return isValue && entry.key == arrayKey && ComparablePath(entry.statement.name) == ComparablePath(KAccessKeyValue);
}

std::size_t RegistryText::LineBegin(std::size_t position) const {
    const std::size_t before = position == 0 ? std::string::npos : text.rfind('\n', position - 1);
    return before == std::string::npos ? 0 : before + 1;
}

std::size_t RegistryText::LineEnd(std::size_t position) const {
    const std::size_t end = std::min(text.find('\n', position), text.size());
    return end > position && text[end - 1] == '\r' ? end - 1 : end;
}

/// Only a hexadecimal value goes on over several lines, and in it nothing but a comment begins with ';'.
std::string RegistryText::CommentsWithin(const KRegStatement& statement) const {
    std::string comments;
    for (std::size_t begin = statement.begin, end = text.find('\n', begin); end < statement.end;
         begin = end + 1, end = text.find('\n', begin)) {
        const std::size_t comment = text.find(';', std::max(begin, statement.data));
        if (comment < end) {
            comments += text.substr(comment, LineEnd(comment) - comment) + lineEnd;
        }
    }
    return comments;
}

void RegistryText::Replace(const KRegStatement& statement, const std::string& data) {
    const std::string comments = CommentsWithin(statement);
    text.replace(statement.data, statement.end - statement.data, data);
    text.insert(LineBegin(statement.begin), comments);
}

void RegistryText::Remove(const KRegStatement& statement) {
    const std::string comments = CommentsWithin(statement);
    const std::size_t rest = text.find_first_not_of(" \t\r", statement.end);
    if (rest < text.size() && text[rest] == ';') {
        text.replace(statement.begin, rest - statement.begin, comments);
        return;
    }
    std::size_t begin = LineBegin(statement.begin);
    const std::size_t lineBefore = begin == 0 ? 0 : LineBegin(begin - 1);
    if (statement.kind == Kind::Key && text.find_first_not_of("\r\n", lineBefore) >= begin) {
        begin = lineBefore;  // the blank line above goes with it
    }
    const std::size_t end = rest < text.size() ? rest + 1 : text.size();
    text.replace(begin, end - begin, comments);
}

void RegistryText::Append(const std::string& value) {
    if (text.back() != '\n') {
        text += text.back() == '\r' ? "\n" : lineEnd;
    }
    text += lineEnd + '[' + RootPath() + '\\' + address + ']' + lineEnd + value + lineEnd;
}

}  // namespace Korvel::Ctl
