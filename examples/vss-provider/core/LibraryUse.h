#pragma once

namespace VssExample {

/// Begins a use of the library's state of the process, which all providers in it share.
void BeginLibraryUse();

/// Ends a use; the last one gives the state back. A provider that leaves a thread behind never ends its use: the
/// library stays as it is for that thread.
void EndLibraryUse();

}  // namespace VssExample
