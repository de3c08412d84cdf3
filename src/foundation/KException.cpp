#include "foundation/KException.h"

namespace Korvel {

KException::KException(const char* text) : message(text) {}

KException::KException(const KException& other) = default;
KException& KException::operator=(const KException& other) = default;

KException::~KException() = default;

const char* KException::ErrorText() const noexcept {
    return message.c_str();
}

}  // namespace Korvel
