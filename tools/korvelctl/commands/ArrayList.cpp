#include <KorvelAccessLibrary.h>

#include <string>

#include "commands/Command.h"
#include "commands/CommandLine.h"
#include "commands/CommandTable.h"
#include "library/Ask.h"
#include "library/Session.h"
#include "library/Target.h"
#include "outcome/Report.h"

namespace Korvel::Ctl {
namespace {

struct Options {};

void Run(const Options& /*options*/, Report& report) {
    const Session session{Target{}};
    report.SetColumns({{"Array", "array"}});
    for (const SharedArray& array : session.Arrays()) {
        report.AddRow({AddressOf(*array)});
    }
    session.ReportProblem(report);
    report.SetEmptySentence("No array is configured.");
}

}  // namespace

void AddArrayList(CLI::App& family, CommandLine& line) {
    AddCommand<Options>(
        family, line, {"list", "List the configured arrays", "korvelctl array list"}, [](CLI::App&, Options&) {}, Run);
}

}  // namespace Korvel::Ctl
