#include "core/LibraryCalls.h"

#include "core/ProviderError.h"

namespace VssExample {

using Kind = ProviderError::Kind;

std::string ReasonOf(const std::exception& error) {
    const auto* failure = dynamic_cast<const Korvel::KException*>(&error);
    return failure == nullptr ? error.what() : failure->ErrorText();
}

void RequireDone(int status, const std::string& what) {
    if (status != Korvel::KStatusSuccess) {
        throw ProviderError(Kind::Veto, what + ": the array's reply held no answer");
    }
}

void DeleteSnapshot(Korvel::KArray& array, const std::string& sourceId, std::string snapshot) {
    Korvel::KVolume* volume = nullptr;
    if (array.GetVolumeByID(sourceId, volume) != Korvel::KStatusSuccess) {
        throw ProviderError(Kind::NotFound, "volume " + sourceId + " is not known any more");
    }
    RequireDone(volume->DeleteSnapshot(snapshot), "deleting snapshot " + snapshot);
}

}  // namespace VssExample
