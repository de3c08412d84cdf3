#include "array/ReplyWriter.h"

#include <libxml/parserInternals.h>

#include <algorithm>
#include <new>
#include <stdexcept>

namespace Korvel::Sim {
namespace {

int Append(void* document, const char* bytes, int length) {
    static_cast<std::string*>(document)->append(bytes, static_cast<std::size_t>(length));
    return length;
}

// libxml2 reads a character that is spelt longer than need be, but refuses a document that holds one.
int ShortestLength(int character) {
    return character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
}

const xmlChar* Xml(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

}  // namespace

ReplyWriter::ReplyWriter(const char* root)
    : document(std::make_unique<std::string>()),
      writer(xmlNewTextWriter(xmlOutputBufferCreateIO(Append, nullptr, document.get(), nullptr)), xmlFreeTextWriter) {
    if (!writer) {
        throw std::bad_alloc();
    }
    Check(xmlTextWriterStartDocument(writer.get(), nullptr, "UTF-8", nullptr));
    Begin(root);
}

void ReplyWriter::Begin(const char* name) {
    Check(xmlTextWriterStartElement(writer.get(), Xml(name)));
}

void ReplyWriter::End() {
    Check(xmlTextWriterEndElement(writer.get()));
}

void ReplyWriter::Element(const char* name, const std::string& text) {
    Check(xmlTextWriterWriteElement(writer.get(), Xml(name), Xml(text.c_str())));
}

std::string ReplyWriter::Finish() {
    Check(xmlTextWriterEndDocument(writer.get()));
    writer.reset();
    return std::move(*document);
}

bool ReplyWriter::CanHold(const std::string& text) {
    const auto* at = reinterpret_cast<const unsigned char*>(text.c_str());
    if (xmlCheckUTF8(at) == 0) {  // what reads a character takes one that begins in its middle
        return false;
    }
    for (std::size_t left = text.size(); left > 0;) {
        int length = static_cast<int>(std::min<std::size_t>(left, 4));
        const int character = xmlGetUTF8Char(at, &length);
        if (character < ' ' || !xmlIsCharQ(static_cast<unsigned>(character)) || length != ShortestLength(character)) {
            return false;
        }
        at += length;
        left -= static_cast<std::size_t>(length);
    }
    return true;
}

void ReplyWriter::Check(int result) const {
    if (result < 0) {
        throw std::runtime_error("The reply could not be written as XML");
    }
}

}  // namespace Korvel::Sim
