#include "rest/KConnection.h"

#include <libxml/parser.h>

#include <memory>

#include "foundation/KBoundedText.h"
#include "foundation/KErrorHandling.h"
#include "foundation/KLimits.h"
#include "foundation/KLog.h"
#include "foundation/KStatus.h"
#include "rest/KRequest.h"

namespace Korvel {

KConnection::KConnection(const std::string& address, const std::string& key) {
    LogTrace("Entering KConnection::KConnection for %s", address);
    RequireArgument(!address.empty() && !key.empty(), "KConnection Constructor: Invalid input argument");
    auto ownAddress = std::make_unique<std::string>(address);
    accessKey = new std::string(key);
    arrayIP = ownAddress.release();
    LogTrace("Exiting KConnection::KConnection");
}

KConnection::~KConnection() {
    LogTrace("Entering KConnection::~KConnection()");
    delete arrayIP;
    delete accessKey;
    LogTrace("Exiting KConnection::~KConnection()");
}

void KConnection::GlobalInit() {
    LogTrace("Entering KConnection::GlobalInit");
    curl_global_init(CURL_GLOBAL_ALL);
    xmlInitParser();  // before threads read replies at once; the process, not the library, ends it
    LogTrace("Exiting KConnection::GlobalInit");
}

void KConnection::GlobalCleanup() {
    LogTrace("Entering KConnection::GlobalCleanup");
    curl_global_cleanup();
    LogTrace("Exiting KConnection::GlobalCleanup");
}

int KConnection::InitializeCurl(CURL*& handle, const char* path, curl_slist*& headers) {
    LogTrace("Entering KConnection::InitializeCurl");
    handle = curl_easy_init();
    if (handle != nullptr) {
        const KRequestText url(KUrlFormat, *arrayIP, path);
        LogTrace("URL: %s", url.Text());
        KRequest::SetFrameOptions(handle, url.Text());
        const KRequestText header(KAccessKeyHeaderFormat, *accessKey);
        LogTrace("%s", header.Text());  // Kept: keys-in-the-log.
        headers = curl_slist_append(headers, header.Text());
        curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers);
    }  // without a handle the request fails when it is performed
    LogTrace("Exiting KConnection::InitializeCurl");
    return KStatusSuccess;
}

KRequest KConnection::Prepare(const char* path) {
    CURL* handle = nullptr;
    curl_slist* headers = nullptr;
    InitializeCurl(handle, path, headers);
    return {handle, headers};
}

}  // namespace Korvel
