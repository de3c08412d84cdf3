#include "library/XmlComplaints.h"

#include <libxml/xmlerror.h>
#include <libxml/xmlversion.h>

#include <exception>
#include <utility>

namespace Korvel::Ctl {
namespace {

thread_local std::string complaint;

#if LIBXML_VERSION >= 21200
using ErrorPointer = const xmlError*;
#else
using ErrorPointer = xmlError*;
#endif

void Collect(void* /*context*/, ErrorPointer error) {
    if (error == nullptr || error->message == nullptr || !complaint.empty()) {
        return;
    }
    try {
        complaint = "line " + std::to_string(error->line) + ": " + error->message;
        complaint.erase(complaint.find_last_not_of('\n') + 1);
    } catch (const std::exception&) {  // must not unwind through the XML library
        complaint.clear();
    }
}

}  // namespace

void CollectXmlComplaints() {
    complaint.clear();
    xmlSetStructuredErrorFunc(nullptr, Collect);
}

std::string TakeXmlComplaint() {
    return std::exchange(complaint, {});
}

}  // namespace Korvel::Ctl
