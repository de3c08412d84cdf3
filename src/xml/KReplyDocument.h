#pragma once

#include <libxml/tree.h>
#include <libxml/xpath.h>

#include <cstddef>
#include <exception>
#include <memory>
#include <span>
#include <string>

namespace Korvel {

/// One element that a reader looks for among the children of a record's node.
struct KField {
    const char* element;
    std::string* text;            ///< receives the element's text
    bool clearedByEmpty = false;  ///< an element without text empties the field instead of leaving it as it was
};

/// An XML reply that was read, and the nodes that one XPath expression selects in it.
///
/// Its end frees all, save when an exception ends it: then document and result stay behind.
class KReplyDocument {
public:
    KReplyDocument() = default;
    ~KReplyDocument();
    KReplyDocument(const KReplyDocument&) = delete;
    KReplyDocument& operator=(const KReplyDocument&) = delete;

    /// Reads the reply and evaluates the expression.
    /// @param reply the reply's whole body; read where it lies
    /// @param expression the XPath expression, zero-terminated
    /// @throws KException when the reply is not well-formed or too long, or the expression cannot be evaluated, for
    ///         lack of memory, too
    /// @throws std::bad_alloc when libxml2 had no memory to read it whole and reports that only aside
    void Read(const std::string& reply, const char* expression);

    /// @return the selected nodes in document order; empty when there are none
    std::span<const xmlNodePtr> Nodes() const;

    /// Reads the text of an element.
    /// @param text receives it; unchanged when the element holds none
    /// @throws std::bad_alloc when libxml2 had no memory to read it whole
    void ReadText(const xmlNode* element, std::string& text) const;

    /// Reads the fields of one record from the children of its node. Stops when as many children were recognised as
    /// there are fields, so an element that stands twice can keep a later field from being read. Kept:
    /// counted-children.
    /// @throws std::bad_alloc when libxml2 had no memory to read them whole; some fields may then be cut
    void ReadFields(const xmlNode* node, std::span<const KField> fields) const;

private:
    void CopyText(const xmlNode* element, std::string& text) const;
    void Evaluate(const char* expression);
    void LeaveBehind() noexcept;

    template <auto Function>
    struct Deleter {
        template <typename Handle>
        void operator()(Handle* handle) const noexcept {
            Function(handle);
        }
    };

    const int exceptionsBefore = std::uncaught_exceptions();
    // Destroyed in reverse: the context, the result, the document.
    std::unique_ptr<xmlDoc, Deleter<xmlFreeDoc>> document;
    std::unique_ptr<xmlXPathObject, Deleter<xmlXPathFreeObject>> result;
    std::unique_ptr<xmlXPathContext, Deleter<xmlXPathFreeContext>> context;
};

/// Tells whether a node has exactly this name, whatever its prefix.
bool IsNamed(const xmlNode* node, const char* name);

}  // namespace Korvel
