#include <KorvelAccessLibrary.h>

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "configuration/Configuration.h"
#include "configuration/Inspection.h"
#include "configuration/RegistryText.h"
#include "foundation/registry/regfile/KRegEncoding.h"
#include "foundation/registry/regfile/KRegError.h"
#include "foundation/registry/regfile/KRegReader.h"
#include "foundation/registry/regfile/KRegStatement.h"
#include "terminal/System.h"

namespace Korvel::Ctl {
namespace {

using Kind = KRegStatement::Kind;

/// Looks at one statement of the file after the other.
class FileInspection {
public:
    explicit FileInspection(const Configuration& read) : configuration(read) {}

    void Take(const KRegStatement& statement) {
        switch (statement.kind) {
            case Kind::Key:
                key = ComparablePath(statement.name);
                TakeKey(statement);
                break;
            case Kind::KeyRemoval:
                key = ComparablePath(statement.name);
                std::erase_if(values, [this](const auto& value) { return IsAtOrBelow(value.first.first, key); });
                std::erase_if(found, [this](const auto& finding) { return IsAtOrBelow(finding.first, key); });
                break;
            case Kind::Value:
                if (key != rootKey && IsAtOrBelow(key, rootKey)) {
                    TakeValue(statement);
                }
                break;
            case Kind::ValueRemoval:
                values.erase({key, ComparablePath(statement.name)});
                break;
        }
    }

    /// @return what is found in the keys that the file does not remove again
    std::vector<Finding> Findings() const {
        std::vector<Finding> findings;
        for (const auto& finding : found) {
            findings.push_back(finding.second);
        }
        return findings;
    }

private:
    struct Stored {
        std::size_t line;
        std::vector<unsigned char> bytes;
    };

    void Add(const std::string& text, std::size_t line) {
        found.emplace_back(key, Finding{array, text, configuration.source + ":" + std::to_string(line)});
    }

    void TakeKey(const KRegStatement& statement) {
        array.clear();
        if (key != rootKey && IsAtOrBelow(key, rootKey)) {
            array = ConfiguredAddress(key.substr(rootKey.size() + 1));
        } else if (const std::string name = FirstNames(statement.name);
                   IsMisspelling(name, rootKey) && misspelt.insert(ComparablePath(name)).second) {
            Add("the key " + name + " is not read: is HKEY_LOCAL_MACHINE\\" + std::string(KRegistryRootKey) + " meant?",
                statement.line);
        }
    }

    /// @return the address as it is configured; empty for one that the file removes again
    std::string ConfiguredAddress(const std::string& subkey) const {
        for (const ConfiguredArray& configured : configuration.arrays) {
            if (IsAtOrBelow(subkey, ComparablePath(configured.address))) {
                return configured.address;
            }
        }
        return {};
    }

    /// @return as many of the path's names as the root key has
    std::string FirstNames(const std::string& name) const {
        std::size_t end = 0;
        for (std::size_t names = 0; names < 4 && end != std::string::npos; ++names) {
            end = name.find('\\', end + (names == 0 ? 0 : 1));
        }
        return name.substr(0, end);
    }

    void TakeValue(const KRegStatement& statement) {
        const bool isAccessKey = ComparablePath(statement.name) == ComparablePath(KAccessKeyValue);
        const auto [value, isFirst] =
            values.try_emplace({key, ComparablePath(statement.name)}, Stored{statement.line, statement.bytes});
        if (!isFirst) {
            const char* changed = value->second.bytes == statement.bytes ? "" : " and differs";
            Add("the value '" + statement.name + "' is given twice" + changed + ": the one in line " +
                    std::to_string(value->second.line) + " does not count",
                statement.line);
            value->second = {statement.line, statement.bytes};
        }
        const std::string bytes(statement.bytes.begin(), statement.bytes.end());
        const std::string misreading = isAccessKey ? DescribeMisreading(statement.type, bytes) : "";
        if (!misreading.empty()) {
            Add(misreading, statement.line);
        } else if (IsMisspelling(statement.name, KAccessKeyValue)) {
            Add(DescribeMisspeltValue(statement.name), statement.line);
        }
    }

    const Configuration& configuration;
    const std::string rootKey = ComparablePath("HKEY_LOCAL_MACHINE\\" + std::string(KRegistryRootKey));
    std::string key;                                               // the section's, comparable
    std::string array;                                             // whose section it is
    std::set<std::string> misspelt;                                // comparable
    std::map<std::pair<std::string, std::string>, Stored> values;  // by key and name
    std::vector<std::pair<std::string, Finding>> found;            // with the key in which it is
};

}  // namespace

std::vector<Finding> InspectSource(const Configuration& configuration) {
    const std::string& path = configuration.source;
    FileInspection inspection(configuration);
    try {
        KRegReader reader(path, KRegEncoding::Read(path));
        for (KRegStatement statement; reader.Next(statement);) {
            inspection.Take(statement);
        }
    } catch (const KRegError&) {  // what is wrong with the file is a fault of the configuration
    }
    std::vector<Finding> findings = inspection.Findings();
    if (OthersCanRead(path)) {
        findings.push_back(
            {"", "other users can read the file and the access keys in it; 'chmod 600' keeps them out", path});
    }
    return findings;
}

}  // namespace Korvel::Ctl
