#include "Bare.h"

#include <curl/curl.h>
#include <libxml/parser.h>
#include <libxml/xpath.h>

#include <array>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <utility>

namespace Bench {

namespace {

template <auto Function>
struct Deleter {
    template <typename Handle>
    void operator()(Handle* handle) const noexcept {
        Function(handle);
    }
};

const xmlChar* Xml(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

const char* Text(const xmlChar* text) {
    return reinterpret_cast<const char*>(text);
}

std::string* FieldOf(Volume& volume, const char* element) {
    const std::pair<const char*, std::string*> fields[] = {{"product-id", &volume.productId},
                                                           {"ieee-id", &volume.ieeeId},
                                                           {"name", &volume.name},
                                                           {"display-name", &volume.displayName},
                                                           {"cg-name", &volume.group}};
    for (const auto& [name, field] : fields) {
        if (std::strcmp(name, element) == 0) {
            return field;
        }
    }
    return nullptr;
}

std::string ContentOf(xmlDocPtr document, const xmlNode* element) {
    xmlChar* const text = xmlNodeListGetString(document, element->children, 1);
    std::string content = text == nullptr ? "" : Text(text);
    xmlFree(text);
    return content;
}

/// Reads a reply and hands every selected node to a function.
template <typename Take>
void ForEachNode(const std::string& reply, const char* expression, Take take) {
    const std::unique_ptr<xmlDoc, Deleter<xmlFreeDoc>> document(
        xmlReadMemory(reply.data(), static_cast<int>(reply.size()), "noname.xml", nullptr, 0));
    const std::unique_ptr<xmlXPathContext, Deleter<xmlXPathFreeContext>> context(xmlXPathNewContext(document.get()));
    const std::unique_ptr<xmlXPathObject, Deleter<xmlXPathFreeObject>> result(
        xmlXPathEvalExpression(Xml(expression), context.get()));
    if (result == nullptr || result->nodesetval == nullptr) {
        throw std::runtime_error("a reply cannot be read");
    }
    for (int i = 0; i < result->nodesetval->nodeNr; ++i) {
        take(document.get(), result->nodesetval->nodeTab[i]);
    }
}

std::size_t Append(char* data, std::size_t size, std::size_t count, void* text) {
    static_cast<std::string*>(text)->append(data, size * count);
    return count;
}

}  // namespace

std::list<Volume> ReadAsTree(const std::string& reply) {
    std::list<Volume> volumes;
    ForEachNode(reply, "//volumes/volume", [&](xmlDocPtr document, const xmlNode* node) {
        Volume& volume = volumes.emplace_back();
        int recognised = 0;
        for (const xmlNode* child = node->children; child != nullptr && recognised < 5; child = child->next) {
            if (std::string* field = FieldOf(volume, Text(child->name)); field != nullptr) {
                *field = ContentOf(document, child);
                ++recognised;
            }
        }
        volume.productId = volume.productId.substr(0, volume.productId.find('-'));
    });
    return volumes;
}

std::list<Volume> ReadAsStream(const std::string& reply) {
    struct Reading {
        std::list<Volume> volumes;
        std::string* field = nullptr;
    } reading;
    xmlSAXHandler handler{};
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = [](void* context, const xmlChar* name, const xmlChar*, const xmlChar*, int,
                                const xmlChar**, int, int, const xmlChar**) {
        auto& [volumes, field] = *static_cast<Reading*>(context);
        if (std::strcmp(Text(name), "volume") == 0) {
            volumes.emplace_back();
        }
        field = volumes.empty() ? nullptr : FieldOf(volumes.back(), Text(name));
    };
    handler.endElementNs = [](void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
        static_cast<Reading*>(context)->field = nullptr;
    };
    handler.characters = [](void* context, const xmlChar* text, int length) {
        if (std::string* field = static_cast<Reading*>(context)->field; field != nullptr) {
            field->append(Text(text), static_cast<std::size_t>(length));
        }
    };
    if (xmlSAXUserParseMemory(&handler, &reading, reply.data(), static_cast<int>(reply.size())) != 0) {
        throw std::runtime_error("a reply cannot be read");
    }
    return std::move(reading.volumes);
}

std::list<std::pair<std::string, std::string>> ReadSnapshots(const std::string& reply) {
    std::list<std::pair<std::string, std::string>> snapshots;
    ForEachNode(reply, "//snapshots/snapshot", [&](xmlDocPtr document, const xmlNode* node) {
        auto& [name, displayName] = snapshots.emplace_back();
        for (const xmlNode* child = node->children; child != nullptr; child = child->next) {
            if (std::strcmp(Text(child->name), "name") == 0) {
                name = ContentOf(document, child);
            } else if (std::strcmp(Text(child->name), "display-name") == 0) {
                displayName = ContentOf(document, child);
            }
        }
    });
    return snapshots;
}

Handle NewHandle() {
    return Handle(curl_easy_init(), curl_easy_cleanup);
}

std::string Request(const Handle& handle, const std::string& url, const std::string& key) {
    const std::unique_ptr<curl_slist, Deleter<curl_slist_free_all>> headers(
        curl_slist_append(nullptr, ("X-Access-Key: " + key).c_str()));
    std::string reply;
    curl_easy_setopt(handle.get(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle.get(), CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(handle.get(), CURLOPT_SSL_VERIFYPEER, 0L);
    curl_easy_setopt(handle.get(), CURLOPT_SSL_VERIFYHOST, 0L);
    curl_easy_setopt(handle.get(), CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(handle.get(), CURLOPT_WRITEFUNCTION, Append);
    curl_easy_setopt(handle.get(), CURLOPT_WRITEDATA, &reply);
    if (curl_easy_perform(handle.get()) != CURLE_OK) {
        throw std::runtime_error("the array does not answer");
    }
    return reply;
}

std::string Listing(long volumes) {
    std::string reply =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<show-volumes-response><status>0</status><status-msg>Done"
        "</status-msg><volumes>";
    for (long i = 1; i <= volumes; ++i) {
        std::array<char, 512> volume{};
        std::snprintf(
            volume.data(), volume.size(),
            "<volume><name>vol-%08ld</name><display-name>sql-data-1-%04ld</display-name><ieee-id>6001f3a0%024ld"
            "</ieee-id><product-id>%08ld-KV3</product-id><cg-name>cg-%08ld</cg-name><mappings><mapping>"
            "<server>srv-00000001</server></mapping></mappings></volume>",
            i, i, i, i, i);
        reply += volume.data();
    }
    return reply + "</volumes></show-volumes-response>";
}

}  // namespace Bench
