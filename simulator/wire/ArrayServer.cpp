#include "wire/ArrayServer.h"

#include <openssl/rand.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>

#include "array/Inventory.h"
#include "array/Reply.h"
#include "array/Routes.h"
#include "control/Fault.h"
#include "wire/Request.h"
#include "wire/WireStream.h"

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

void Announce(httplib::Response& response, const Reply& answer) {
    response.status = answer.status;
    if (!answer.location.empty()) {
        response.set_header("Location", answer.location);
    }
}

// Sends the answer. Where `next` is asked, it says how many of the bytes that are left come next; with 0 it has ended
// the connection.
template <typename Next>
void Send(httplib::Response& response, const Reply& answer, Next next) {
    Announce(response, answer);
    const ArrayState::Document body = answer.body;
    if (body->empty()) {
        response.set_content("", answer.contentType);
        return;
    }
    response.set_content_provider(body->size(), answer.contentType,
                                  [body, next](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
                                      const std::size_t count = next(offset, length);
                                      return count > 0 && sink.write(body->data() + offset, count);
                                  });
}

void Send(httplib::Response& response, const Reply& answer) {
    Send(response, answer, [](std::size_t /*offset*/, std::size_t length) { return std::min(length, pieceOfBody); });
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
        std::optional<std::string> body = ReadBody(request, reader);
        if (!body) {
            Send(response, Routes::Error(413, "The body is too long"));
        } else {
            Serve(request, response, std::move(*body));
        }
    };
    const auto withoutBody = [this](const httplib::Request& request, httplib::Response& response) {
        Serve(request, response, {});
    };
    Get(anyPath, withoutBody);
    httplib::Server::Options(anyPath, withoutBody);
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

bool ArrayServer::BeforeHandshake(WireStream& stream) {
    const auto fault = faults.TakeForConnection(number, stream.ClientPort());
    if (!fault) {
        return true;
    }
    if (fault->handshake == Fault::Handshake::Reset) {
        stream.Reset();
        return false;
    }
    if (fault->handshake == Fault::Handshake::Closed) {
        return false;
    }
    stream.SwallowHello();
    if (fault->handshake == Fault::Handshake::Cut) {
        stream.SendUnsealed(std::string("\x16\x03\x03\x00\x7a\x02", 6));  // the head of a record that never comes
    } else if (fault->handshake == Fault::Handshake::Garbage) {
        stream.SendUnsealed(std::string(512, '\xa5'));
    } else if (fault->handshake == Fault::Handshake::Version) {
        stream.SendUnsealed(std::string("\x15\x03\x03\x00\x02\x02\x46", 7));  // "no version that I speak"
    }
    Wait(std::chrono::milliseconds(fault->hold));
    return false;
}

void ArrayServer::Serve(const httplib::Request& request, httplib::Response& response, std::string body) {
    WireStream& stream = WireStream::Of(request);
    Request noted = Request::FromHead(stream.Head());
    noted.array = number;
    noted.body = std::move(body);
    noted.newConnection = stream.IsFirstRequest();
    const auto fault = faults.TakeForRequest(number, stream.ClientPort(), noted.method, noted.target);
    noted.fault = fault ? fault->id : 0;
    stream.Note();
    journal.Add(noted);
    if (!fault && noted.method == "POST" && !HasBody(request)) {
        Send(response, Routes::Error(400, "A POST has a body"));
    } else if (!fault) {
        Send(response, Execute(noted));
    } else if (Wait(std::chrono::milliseconds(fault->delay))) {
        AnswerFaulted(stream, response, noted, *fault);
    } else {
        stream.Drop();
    }
}

// Ends a connection in the way that the fault says.
void ArrayServer::End(WireStream& stream, const Fault& fault) {
    Wait(std::chrono::milliseconds(fault.hold));
    fault.reset ? stream.Reset() : stream.Drop();
}

void ArrayServer::AnswerFaulted(WireStream& stream, httplib::Response& response, const Request& request,
                                const Fault& fault) {
    using Kind = Fault::Kind;
    const bool isOwnAnswer = fault.kind == Kind::Delay || fault.kind == Kind::Cut || fault.kind == Kind::Drip;
    const Reply answer = isOwnAnswer || fault.execute ? Execute(request) : Reply{.body = {}, .location = {}};
    switch (fault.kind) {
        case Kind::Raw:
            stream.write(fault.body.data(), fault.body.size());
            End(stream, fault);
            return;
        case Kind::Drop:
            End(stream, fault);
            return;
        case Kind::Cut:
            Send(response, answer,
                 [this, fault, &stream, end = fault.keep.value_or(answer.body->size() / 2)](std::size_t offset,
                                                                                            std::size_t length) {
                     if (offset >= end) {
                         End(stream, fault);
                         return std::size_t{0};
                     }
                     return std::min({length, pieceOfBody, end - offset});
                 });
            return;
        case Kind::Drip:
            Send(response, answer, [this, fault](std::size_t /*offset*/, std::size_t length) {
                Wait(std::chrono::milliseconds(fault.pause));
                return std::min(length, fault.step);
            });
            return;
        default:
            Send(response, isOwnAnswer ? answer : Faulted(fault));
    }
}

Reply ArrayServer::Execute(const Request& request) {
    if (request.Header("X-Access-Key") != key) {
        return Routes::Error(401, "The access key is missing or wrong");
    }
    return Routes::Answer(state, request.method, request.target, request.body);
}

}  // namespace Korvel::Sim
