#pragma once

#include <KorvelAccessLibrary.h>

namespace Korvel::Ctl {

/// The library's process-wide state, from the first request to the last.
class Library {
public:
    Library() { KAccessLayer::GlobalInit(); }
    ~Library() { KAccessLayer::GlobalCleanup(); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
};

}  // namespace Korvel::Ctl
