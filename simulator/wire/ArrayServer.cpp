#include "wire/ArrayServer.h"

#include <openssl/rand.h>

#include <algorithm>
#include <stdexcept>

namespace Korvel::Sim {
namespace {

// Matches a line end too, which a dot does not.
const char* const anyPath = R"([\s\S]*)";

constexpr std::size_t pieceOfBody = 1U << 18U;

std::string RandomKey() {
    static const char digits[] = "0123456789ABCDEF";
    unsigned char bytes[16];
    if (RAND_bytes(bytes, sizeof bytes) != 1) {
        throw std::runtime_error("no random numbers for an access key");
    }
    std::string key;
    for (const unsigned char byte : bytes) {
        key += digits[byte % 16];
    }
    return key;
}

Reply Faulted(const Fault& fault) {
    return {.status = fault.status,
            .body = std::make_shared<const std::string>(fault.body),
            .contentType = fault.contentType,
            .location = fault.location};
}

// Announces the whole body and sends it until `end`; if that is short of the whole, the connection goes with it.
void SendBody(httplib::Response& response, const Reply& answer, WireStream& stream, std::size_t end) {
    const ArrayState::Document body = answer.body;
    if (body->empty()) {
        response.set_content("", answer.contentType);
        return;
    }
    response.set_content_provider(
        body->size(), answer.contentType,
        [body, end, &stream](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
            if (offset >= end) {
                stream.Drop();
                return false;
            }
            return sink.write(body->data() + offset, std::min({length, pieceOfBody, end - offset}));
        });
}

}  // namespace

ArrayServer::ArrayServer(std::size_t arrayNumber, Inventory inventory, SSL_CTX* tls, Faults& allFaults,
                         Journal& sharedJournal)
    : LoopbackServer(tls),
      number(arrayNumber),
      key(RandomKey()),
      state(std::move(inventory)),
      faults(allFaults),
      journal(sharedJournal) {
    // Bodies are read here and not by the library, which would refuse a form of more than 8 kB.
    const auto withBody = [this](const httplib::Request& request, httplib::Response& response,
                                 const httplib::ContentReader& reader) {
        Serve(request, response, ReadBody(request, reader));
    };
    const auto withoutBody = [this](const httplib::Request& request, httplib::Response& response) {
        Serve(request, response, {});
    };
    Get(anyPath, withoutBody);
    Options(anyPath, withoutBody);
    Post(anyPath, withBody);
    Put(anyPath, withBody);
    Patch(anyPath, withBody);
    Delete(anyPath, withBody);
}

ArrayServer::~ArrayServer() {
    Stop();
}

void ArrayServer::AfterRequest(WireStream& stream) {
    // What the HTTP library refused on its own has not come by here.
    if (!stream.Head().empty() && !stream.IsNoted()) {
        Request request = Request::FromHead(stream.Head());
        request.array = number;
        request.newConnection = stream.IsFirstRequest();
        journal.Add(std::move(request));
    }
}

void ArrayServer::Serve(const httplib::Request& request, httplib::Response& response, std::string body) {
    WireStream& stream = WireStream::Of(request);
    Request noted = Request::FromHead(stream.Head());
    noted.array = number;
    noted.body = std::move(body);
    noted.newConnection = stream.IsFirstRequest();
    const auto fault = faults.Take(number, noted.method, noted.target);
    noted.fault = fault ? fault->id : 0;
    stream.Note();
    journal.Add(noted);

    const Fault::Kind kind = fault ? fault->kind : Fault::Kind::Delay;
    const bool answersItself = kind == Fault::Kind::Delay || kind == Fault::Kind::Cut;
    if (fault && !Wait(std::chrono::milliseconds(fault->delay))) {
        stream.Drop();
        return;
    }
    Reply answer = answersItself || fault->execute ? Execute(noted) : Reply{.body = {}, .location = {}};
    if (kind == Fault::Kind::Drop) {
        stream.Drop();
        return;
    }
    if (!answersItself) {
        answer = Faulted(*fault);
    }
    response.status = answer.status;
    if (!answer.location.empty()) {
        response.set_header("Location", answer.location);
    }
    const std::size_t size = answer.body->size();
    const std::size_t end = kind != Fault::Kind::Cut ? size : fault->keep.value_or(size / 2);
    SendBody(response, answer, stream, end);
}

Reply ArrayServer::Execute(const Request& request) {
    if (request.Header("X-Access-Key") != key) {
        return Routes::Error(401, "The access key is missing or wrong");
    }
    return Routes::Answer(state, request.method, request.target, request.body);
}

}  // namespace Korvel::Sim
