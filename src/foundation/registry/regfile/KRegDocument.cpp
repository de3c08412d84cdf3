#include "foundation/registry/regfile/KRegDocument.h"

#include <cstdlib>

#include "foundation/registry/regfile/KRegEncoding.h"
#include "foundation/registry/regfile/KRegReader.h"
#include "foundation/registry/regfile/KRegStatement.h"

namespace Korvel {

namespace {

constexpr std::string_view machine = "HKEY_LOCAL_MACHINE";

}  // namespace

std::string KRegDocument::ConfiguredPath() {
    const char* path = std::getenv("KORVEL_REGISTRY");
    return path == nullptr || *path == '\0' ? "/etc/korvel/registry.reg" : path;
}

KRegDocument::KRegDocument(const std::string& path) {
    KRegReader reader(path, KRegEncoding::Read(path));
    for (KRegStatement statement; reader.Next(statement);) {
        Apply(statement);
    }
    hives.Add(machine);  // the hive is there even if the file says nothing about it
}

const KRegNode* KRegDocument::Find(std::string_view path) const {
    // A path that begins with a backslash is no path below a hive.
    return path.starts_with('\\') ? nullptr : hives.Find(machine)->Find(path);
}

void KRegDocument::Apply(const KRegStatement& statement) {
    switch (statement.kind) {
        case KRegStatement::Kind::Key:
            section = &hives.Add(statement.name);
            section->line = section->line == 0 ? statement.line : section->line;
            break;
        case KRegStatement::Kind::KeyRemoval:
            section = &hives;  // the reader lets no value follow
            hives.Remove(statement.name);
            break;
        case KRegStatement::Kind::Value:
            section->values.insert_or_assign(statement.name, statement.bytes);
            break;
        case KRegStatement::Kind::ValueRemoval:
            if (const auto found = section->values.find(statement.name); found != section->values.end()) {
                section->values.erase(found);
            }
            break;
    }
}

}  // namespace Korvel
