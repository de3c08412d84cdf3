#pragma once

#include <curl/curl.h>

#include <string>

#include "foundation/KErrorHandling.h"
#include "foundation/KFormat.h"

namespace Korvel {

/// One exchange with an array: the libcurl handle, the header list and the response code, of which nothing outlives it.
/// The reply's body goes into a text of the caller's.
class KRequest {
public:
    /// @param replyText gathers the reply's body; not owned
    explicit KRequest(std::string& replyText) : reply(replyText) {}
    ~KRequest() { Release(); }
    KRequest(const KRequest&) = delete;
    KRequest& operator=(const KRequest&) = delete;

    /// Runs the protected steps of a request and releases handle and headers after them, or, when an exception leaves
    /// the steps, before it is logged.
    /// @return what the steps return
    template <typename Steps>
    int Run(Steps steps) {
        const auto stepsAndRelease = [&]() -> int {
            const int status = steps();
            Release();
            return status;
        };
        return LogAndRethrow(stepsAndRelease, [&] { Release(); });
    }

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
    /// @throws KException when the exchange fails, also when there is no handle
    void Perform();

    /// @throws KException when the response code is not 200
    void RequireOK(KPartialFormat<long> failureText) const;

    /// @return the reply's body so far
    const std::string& Reply() const { return reply; }

    /// Frees the header list and cleans up the handle, once.
    void Release() noexcept;

    CURL* handle = nullptr;
    curl_slist* headers = nullptr;

private:
    std::string& reply;
    long code = 0;
};

}  // namespace Korvel
