#pragma once

#include <curl/curl.h>

#include <cstddef>
#include <memory>
#include <string>

#include "foundation/KFormat.h"

namespace Korvel {

/// One exchange with an array: the libcurl handle and the header list, of which nothing outlives it.
class KRequest {
public:
    /// Takes over what was prepared for the exchange.
    /// @param preparedHandle null when libcurl has none: the request then fails when it is performed
    /// @param preparedHeaders the list that the handle was given
    KRequest(CURL* preparedHandle, curl_slist* preparedHeaders) : handle(preparedHandle), headers(preparedHeaders) {}

    /// Sets what every request has: the URL, redirects followed, the certificate not verified, the write callback.
    static void SetFrameOptions(CURL* handle, const char* url);

    /// libcurl's write callback: appends the data to the reply.
    /// @param replyText the std::string that gathers the reply's body
    /// @return `count`, or 0, which makes libcurl end the transfer, when there is no reply or no memory for it
    static std::size_t WriteReply(char* data, std::size_t size, std::size_t count, void* replyText) noexcept;

    /// Makes a command of the request, which is a GET otherwise.
    /// @param method "POST" or "DELETE"
    /// @param body null for a command without one; it has to stay until the request is performed
    void SetCommand(const char* method, const std::string* body) const;

    /// Sends the request, waits for its end and logs the response code.
    /// @param reply the reply's body is appended
    /// @param failureText what a response code other than 200 is reported as
    /// @throws KException when the exchange fails, also when there is no handle, or the code is not 200
    void Perform(std::string& reply, KPartialFormat<long> failureText) const;

private:
    template <auto Function>
    struct Deleter {
        template <typename Handle>
        void operator()(Handle* owned) const noexcept {
            Function(owned);
        }
    };

    // Destroyed in reverse: the list before the handle that was given it.
    std::unique_ptr<CURL, Deleter<curl_easy_cleanup>> handle;
    std::unique_ptr<curl_slist, Deleter<curl_slist_free_all>> headers;
};

}  // namespace Korvel
