#pragma once

#include <KorvelAccessLibrary.h>

#include <exception>
#include <string>

namespace VssExample {

/// @return what one of the library's exceptions says: a KException keeps its text apart from what()
std::string ReasonOf(const std::exception& error);

/// @param what what was asked of the array, for the administrator
/// @throws ProviderError when the status is not success: that is a failure without a text of its own
void RequireDone(int status, const std::string& what);

/// Deletes a snapshot.
/// @param sourceId the IEEE identifier of a volume that an earlier search has brought into the array's memory
/// @param snapshot the snapshot's name
/// @throws ProviderError or KException when it may still be there
void DeleteSnapshot(Korvel::KArray& array, const std::string& sourceId, std::string snapshot);

}  // namespace VssExample
