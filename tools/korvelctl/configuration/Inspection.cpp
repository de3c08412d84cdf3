#include "configuration/Inspection.h"

#include <KorvelAccessLibrary.h>

#include <map>

#include "text/EditDistance.h"

namespace Korvel::Ctl {
namespace {

enum ValueType : unsigned long { Number = 4, BigEndianNumber = 5, Texts = 7, LongNumber = 11 };  // the registry's own

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    for (char& character : lower) {
        character = character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    }
    return lower;
}

/// @return the address in the one form in which all that lead to the same place are equal
std::string Destination(std::string_view address) {
    std::string destination = LowerCase(address);
    const std::string httpsPort = ":443";
    if (destination.size() > httpsPort.size() &&
        destination.compare(destination.size() - httpsPort.size(), std::string::npos, httpsPort) == 0) {
        destination.resize(destination.size() - httpsPort.size());
    }
    if (destination.size() > 1 && destination.back() == '.') {
        destination.pop_back();
    }
    return destination;
}

/// Every second byte is a zero, as in text of two bytes for each character.
bool IsWideText(std::string_view bytes) {
    bool isWide = bytes.size() >= 4 && bytes.size() % 2 == 0;
    for (std::size_t i = 1; i < bytes.size(); i += 2) {
        isWide = isWide && bytes[i] == '\0';
    }
    return isWide;
}

}  // namespace

std::vector<Finding> Inspect(const Configuration& configuration) {
    std::vector<Finding> findings = InspectSource(configuration);
    std::map<std::string, const ConfiguredArray*> seen;
    for (const ConfiguredArray& array : configuration.arrays) {
        const auto [entry, isFirst] = seen.emplace(Destination(array.address), &array);
        if (!isFirst) {
            const char* key = entry->second->accessKey == array.accessKey ? "the same" : "another";
            findings.push_back({array.address,
                                "is the same array as " + entry->second->address + ", with " + key +
                                    " access key: each command uses both",
                                array.place});
        }
    }
    return findings;
}

std::string DescribeMisreading(unsigned long type, std::string_view bytes) {
    if (type == Number || type == BigEndianNumber || type == LongNumber) {
        return "the AccessKey value is a number, whose bytes the library reads as text: store the key as a text";
    }
    if (IsWideText(bytes)) {
        return "the AccessKey value is UTF-16 in bytes, of which the library reads the first character alone: store "
               "the key as a text";
    }
    const std::size_t end = bytes.find('\0');
    if (end != std::string_view::npos && bytes.find_first_not_of('\0', end) != std::string_view::npos) {
        return std::string("the AccessKey value ") + (type == Texts ? "is a list of texts" : "holds a zero byte") +
               ", of which the library reads the first part alone: store the key as a text";
    }
    return {};
}

bool IsMisspelling(std::string_view name, std::string_view meant) {
    constexpr std::size_t mostSlips = 2;
    const std::size_t slips = EditDistance(LowerCase(name), LowerCase(meant));
    return slips != 0 && slips <= mostSlips;
}

std::string DescribeMisspeltValue(const std::string& name) {
    return "the value '" + name + "' is not read: is '" + KAccessKeyValue + "' meant?";
}

}  // namespace Korvel::Ctl
