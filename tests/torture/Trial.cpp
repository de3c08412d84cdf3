#include "torture/Trial.h"

#include <dlfcn.h>
#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include "support/OpenDescriptors.h"

namespace {

// What a failed reading leaves behind on purpose, so that nothing else hides among it.
xmlDocPtr lastDocument = nullptr;
xmlXPathObjectPtr lastResult = nullptr;

template <typename Function>
Function* Real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

xmlDocPtr xmlReadMemory(const char* text, int size, const char* url, const char* encoding, int options) {
    static auto* const real = Real<decltype(xmlReadMemory)>("xmlReadMemory");
    lastResult = nullptr;
    return lastDocument = real(text, size, url, encoding, options);
}

xmlXPathObjectPtr xmlXPathEvalExpression(const xmlChar* text, xmlXPathContextPtr context) {
    static auto* const real = Real<decltype(xmlXPathEvalExpression)>("xmlXPathEvalExpression");
    return lastResult = real(text, context);
}
}

namespace Korvel::Torture {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* ownerNames[] = {"the library", "libxml2", "libcurl", "OpenSSL", "another"};
static_assert(std::size(ownerNames) == OwnerCount);

}  // namespace

void Trial::Run(Point point, Reference* learnt) {
    tried = point;
    known = scene.Known();
    given = scene.Given();
    const unsigned long descriptors = Testing::OpenDescriptors();
    lastDocument = nullptr;
    lastResult = nullptr;
    const auto begin = Clock::now();
    StartCounting(point.number, point.all, learnt != nullptr ? learnt->owners.data() : nullptr,
                  learnt != nullptr ? learnt->owners.size() : 0);
    try {
        status = call.run(scene);
    } catch (const std::exception&) {
        threw = true;
    }
    counted = StopCounting();
    took = Clock::now() - begin;
    document = lastDocument;
    result = lastResult;
    sameDescriptors = Testing::OpenDescriptors() == descriptors;
}

void Trial::Teach(Reference& reference) {
    Store(reference.known, scene.Known());
    Store(reference.given, scene.Given());
    reference.status = threw ? -1 : status;
    reference.counted = counted;
    reference.took = took;
    Clear();
    std::uint64_t first = 0;
    for (std::size_t owner = 0; owner < reference.left.size(); ++owner) {
        reference.left[owner] = Left(static_cast<Owner>(owner), first);
    }
}

Verdict Trial::Judge(const Reference& reference, std::string& text) {
    const bool failed = threw || (status == call.failure && status != reference.status);
    text = scene.Known() + "  " + scene.Given();
    if (counted < tried.number) {
        return Verdict::Missed;
    }
    if (!failed && (status != reference.status || scene.Known() != reference.known.data() ||
                    scene.Given() != reference.given.data())) {
        return Verdict::Wrong;
    }
    if (failed && (scene.Known() != known || !GivenAsBefore(reference.given.data()))) {
        return Verdict::Changed;
    }
    if (!sameDescriptors) {
        return Verdict::Descriptor;
    }
    if (!NextWorks(reference.status)) {
        return Verdict::NextCall;
    }
    Clear();
    for (const Owner owner : {Owner::Library, Owner::LibXml2, Owner::LibCurl, Owner::Other, Owner::OpenSsl}) {
        std::uint64_t first = 0;
        if (Left(owner, first) > reference.left.at(static_cast<std::size_t>(owner))) {
            text = ownerNames[static_cast<std::size_t>(owner)] + std::string("'s allocation ") + std::to_string(first);
            return owner == Owner::OpenSsl ? Verdict::Held : Verdict::Left;
        }
    }
    return failed ? Verdict::Threw : Verdict::Unharmed;
}

bool Trial::GivenAsBefore(const std::string& afterwards) const {
    const std::string now = scene.Given();
    const bool isPart = afterwards == now || (afterwards.starts_with(now) &&  // in whole entries
                                              (now.ends_with(';') || afterwards[now.size()] == ';'));
    return now == given || (call.partStays && isPart);
}

bool Trial::NextWorks(int expected) {
    try {
        if (std::string(call.name).find("::Global") != std::string::npos) {
            KAccessLayer::GlobalInit();
            return NextCall(scene) == 0;
        }
        return (call.requests.empty() ? call.run(scene) : NextCall(scene)) == (call.requests.empty() ? expected : 0);
    } catch (const std::exception&) {
        return false;
    }
}

/// Frees what belongs to the caller and what is left behind on purpose.
void Trial::Clear() {
    scene.~Scene();
    if (threw && IsHeld(result)) {
        xmlXPathFreeObject(result);
    }
    if (threw && IsHeld(document)) {
        xmlFreeDoc(document);
    }
    xmlResetLastError();
}

}  // namespace Korvel::Torture
