#include <KorvelAccessLibrary.h>

#include "commands/Command.h"
#include "commands/CommandTable.h"
#include "library/Operation.h"
#include "library/Session.h"

namespace Korvel::Ctl {
namespace {

struct Options {};

void Run(const Options& /*options*/, Report& report) {
    const Session session{Target{}};
    report.SetColumns({{"Array", "array"}});
    for (KArray* array : session.Arrays()) {
        report.AddRow({AddressOf(*array)});
    }
    if (!session.Problem().empty()) {
        report.AddProblem({session.Problem()});
    } else if (!report.HasRows()) {
        report.SetSentence("No array is configured.");
    }
}

}  // namespace

void AddArrayList(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line, {"list", "List the configured arrays", "korvelctl array list"}, [](CLI::App&, Options&) {}, Run);
}

}  // namespace Korvel::Ctl
