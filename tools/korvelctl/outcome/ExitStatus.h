#pragma once

namespace Korvel::Ctl {

/// What korvelctl ends with. Scripts rely on the numbers.
enum ExitStatus : int {
    ExitDone = 0,
    ExitFailed = 1,
    ExitNotFound = 2,
    ExitWrongUsage = 64,
};

}  // namespace Korvel::Ctl
