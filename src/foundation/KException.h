#pragma once

#include <exception>
#include <string>

#include "KExport.h"

#if defined(_MSC_VER)
#pragma warning(push)
#pragma warning(disable : 4251 4275)  // standard classes in an exported class: caller and library share one runtime
#endif

namespace Korvel {

/// A failure of the transport, the HTTP status, the array's status, a reply's form or the registry.
///
/// The text of the failure is what ErrorText() returns. what() is the base's and stays generic: log records of a
/// KException therefore show the generic text. Kept: exception-text.
class KORVEL_API KException : public std::exception {
public:
    /// @param text the failure's text, zero-terminated; copied
    explicit KException(const char* text);
    /// Copies the message.
    KException(const KException& other);
    /// Copies the message.
    KException& operator=(const KException& other);
    ~KException() override;

    /// @return the failure's text, zero-terminated; owned by the exception
    virtual const char* ErrorText() const noexcept;

private:
    std::string message;
};

}  // namespace Korvel

#if defined(_MSC_VER)
#pragma warning(pop)
#endif
