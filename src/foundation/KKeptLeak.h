#pragma once

#if !defined(__has_feature)
#define __has_feature(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
#include <sanitizer/lsan_interface.h>
#endif

namespace Korvel {

/// Tells a leak checker that an object, with all it reaches, is left behind on purpose. Does nothing else.
inline void KeepLeaked([[maybe_unused]] const void* object) noexcept {
#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
    __lsan_ignore_object(object);
#endif
}

}  // namespace Korvel
