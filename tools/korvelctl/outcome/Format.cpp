#include "outcome/Format.h"

#include <cstdlib>

#include "outcome/JsonWriter.h"
#include "outcome/TableWriter.h"
#include "outcome/TsvWriter.h"
#include "terminal/System.h"

namespace Korvel::Ctl {
namespace {

template <typename Writer>
std::unique_ptr<RowWriter> Make(std::ostream& output) {
    return std::make_unique<Writer>(output);
}

std::unique_ptr<RowWriter> MakeTable(std::ostream& output) {
    const char* refused = std::getenv("NO_COLOR");  // NOLINT(concurrency-mt-unsafe): nothing changes it then
    const bool coloured = (refused == nullptr || *refused == '\0') && OutputCanColour();
    return std::make_unique<TableWriter>(output, coloured);
}

struct Format {
    const char* name;
    std::unique_ptr<RowWriter> (*make)(std::ostream& output);
};

constexpr Format Formats[] = {{TextFormat, MakeTable}, {"json", Make<JsonWriter>}, {"tsv", Make<TsvWriter>}};

}  // namespace

std::vector<std::string> FormatNames() {
    std::vector<std::string> names;
    for (const Format& format : Formats) {
        names.emplace_back(format.name);
    }
    return names;
}

std::unique_ptr<RowWriter> MakeWriter(const std::string& name, std::ostream& output) {
    for (const Format& format : Formats) {
        if (name == format.name) {
            return format.make(output);
        }
    }
    return MakeTable(output);
}

}  // namespace Korvel::Ctl
