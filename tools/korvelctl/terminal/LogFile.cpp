#include "terminal/LogFile.h"

#include "outcome/ExitStatus.h"
#include "outcome/Failure.h"
#include "terminal/System.h"

namespace Korvel::Ctl {

void SetLogging(const std::string& file, const std::string& level, Report& report) {
    if (!level.empty()) {
        SetEnvironment("KORVEL_LOG_LEVEL", level);
    }
    if (file.empty()) {
        return;
    }
    if (!CanAppend(file)) {
        throw Failure(ExitFailed, "the log file '" + file + "' cannot be written");
    }
    if (OthersCanRead(file)) {
        report.AddProblem(
            {"other users can read the log file '" + file + "', which holds access keys from level 2 on", ExitDone});
    }
    SetEnvironment("KORVEL_LOG_FILE", file);
}

}  // namespace Korvel::Ctl
