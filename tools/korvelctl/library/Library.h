#pragma once

#include <KorvelAccessLibrary.h>

#include "crew/Crew.h"

namespace Korvel::Ctl {

/// The library's process-wide state, from the first request to the last. It is left as it is when a request still
/// hangs: the process ends without taking it down.
class Library {
public:
    Library() { KAccessLayer::GlobalInit(); }
    ~Library() {
        if (!Crew::LeftWorkBehind()) {
            KAccessLayer::GlobalCleanup();
        }
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
};

}  // namespace Korvel::Ctl
