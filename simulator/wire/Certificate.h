#pragma once

#include <openssl/ssl.h>

#include <memory>
#include <string>

namespace Korvel::Sim {

/// A TLS context with a key and a self-signed certificate that were made for it.
class Certificate {
public:
    /// Makes a certificate for `address`, an IPv4 address. Throws std::runtime_error when OpenSSL cannot.
    explicit Certificate(const std::string& address);

    /// Returns the context, which this object owns.
    SSL_CTX* Context() const { return context.get(); }

private:
    std::unique_ptr<SSL_CTX, void (*)(SSL_CTX*)> context;
};

}  // namespace Korvel::Sim
