#include "xml/KReplyDocument.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <cstring>
#include <limits>
#include <new>

#include "foundation/KException.h"
#include "foundation/KKeptLeak.h"

namespace Korvel {

namespace {

const xmlChar* XmlText(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

/// libxml2 goes on without memory: it hands out a document, a result or a text that lacks what did not fit, and only
/// its last error tells. Such a reading is a failure, never a shorter reply.
void RequireMemory(const xmlError* error) {
    if (error != nullptr && error->code == XML_ERR_NO_MEMORY) {
        throw std::bad_alloc();
    }
}

struct XmlTextDeleter {
    void operator()(xmlChar* text) const noexcept { xmlFree(text); }
};

}  // namespace

void KReplyDocument::Read(const std::string& reply, const char* expression) {
    xmlResetLastError();  // so that what libxml2 says of a lack of memory is said of this reply
    // The reader counts in int: a longer reply is refused, not wrapped.
    if (reply.size() <= static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        document.reset(xmlReadMemory(reply.data(), static_cast<int>(reply.size()), "noname.xml", nullptr, 0));
    }
    if (!document) {
        throw KException("Failed to open the xml document");
    }
    RequireMemory(xmlGetLastError());
    context.reset(xmlXPathNewContext(document.get()));
    if (!context) {
        throw KException("Failed to create xml path context");
    }
    Evaluate(expression);
    if (Nodes().empty()) {
        Evaluate(expression);  // libxml2 can lose nodes for lack of memory without a word; a second time it has memory
    }                          // again, or says what it lacks
}

void KReplyDocument::Evaluate(const char* expression) {
    result.reset(xmlXPathEvalExpression(XmlText(expression), context.get()));
    RequireMemory(&context->lastError);
    RequireMemory(xmlGetLastError());
    if (!result) {
        throw KException("Failed to evaluate xPath expression");
    }
}

std::span<const xmlNodePtr> KReplyDocument::Nodes() const {
    const xmlNodeSet* nodes = result ? result->nodesetval : nullptr;
    if (nodes == nullptr || nodes->nodeNr == 0 || nodes->nodeTab == nullptr) {
        return {};
    }
    return {nodes->nodeTab, static_cast<std::size_t>(nodes->nodeNr)};
}

void KReplyDocument::CopyText(const xmlNode* element, std::string& text) const {
    if (element->children == nullptr) {
        return;
    }
    const std::unique_ptr<xmlChar, XmlTextDeleter> content(xmlNodeListGetString(document.get(), element->children, 1));
    if (content) {
        text = reinterpret_cast<const char*>(content.get());
    }
}

void KReplyDocument::ReadText(const xmlNode* element, std::string& text) const {
    CopyText(element, text);
    RequireMemory(xmlGetLastError());
}

KReplyDocument::~KReplyDocument() {
    if (std::uncaught_exceptions() > exceptionsBefore) {
        LeaveBehind();
    }
}

/// Kept: documents-left-behind. A failed reading frees its context alone.
void KReplyDocument::LeaveBehind() noexcept {
    KeepLeaked(result.release());
    KeepLeaked(document.release());
}

bool IsNamed(const xmlNode* node, const char* name) {
    return node->name != nullptr && std::strcmp(reinterpret_cast<const char*>(node->name), name) == 0;
}

void KReplyDocument::ReadFields(const xmlNode* node, std::span<const KField> fields) const {
    std::size_t recognised = 0;
    for (const xmlNode* child = node->children; child != nullptr && recognised < fields.size(); child = child->next) {
        for (const KField& field : fields) {
            if (!IsNamed(child, field.element)) {
                continue;
            }
            if (field.clearedByEmpty) {
                field.text->clear();
            }
            CopyText(child, *field.text);
            ++recognised;
            break;  // a node has one name
        }
    }
    RequireMemory(xmlGetLastError());  // it remembers, so once for all texts is enough
}

}  // namespace Korvel
