#pragma once

#include <libxml/xmlwriter.h>

#include <memory>
#include <string>

namespace Korvel::Sim {

/// Writes one XML reply.
class ReplyWriter {
public:
    /// Begins a document with the root element `root`.
    explicit ReplyWriter(const char* root);

    /// Opens the element `name`; End closes it.
    void Begin(const char* name);

    /// Closes the element opened last.
    void End();

    /// Writes the element `name` that holds `text`.
    void Element(const char* name, const std::string& text);

    /// Closes what is open and returns the document. The writer is used up.
    std::string Finish();

    /// Tells whether `text` can stand in a reply and come out of it unchanged: UTF-8 without control characters.
    static bool CanHold(const std::string& text);

private:
    void Check(int result) const;

    std::unique_ptr<std::string> document;
    std::unique_ptr<xmlTextWriter, void (*)(xmlTextWriterPtr)> writer;
};

}  // namespace Korvel::Sim
