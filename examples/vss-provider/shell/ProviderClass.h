#pragma once

#include <windows.h>

namespace VssExample {

/// The class under which the provider is registered. An author of another provider makes a new one with uuidgen.
inline constexpr CLSID ProviderClass = {0x6f0c3d52, 0x5b0e, 0x4a5d, {0x9d, 0x3b, 0x2e, 0x5c, 0x1a, 0x7b, 0x8f, 0x41}};

}  // namespace VssExample
