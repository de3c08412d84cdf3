#pragma once

namespace Korvel {

/// What a public operation returns. A status obtained from a lower layer is passed up unchanged.
enum KStatus : int {
    KStatusSuccess = 0,
    KStatusFailure = 1,   ///< an exception was caught and logged, or a reply held no usable answer
    KStatusNotFound = 2,  ///< no volume, snapshot or server matched
};

}  // namespace Korvel
