#include "wire/Certificate.h"

#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/x509v3.h>

#include <stdexcept>

namespace Korvel::Sim {
namespace {

constexpr long oneYear = 365L * 24 * 3600;

void Check(bool done) {
    if (!done) {
        throw std::runtime_error("OpenSSL could not make a certificate");
    }
}

void AddAddress(X509* certificate, const std::string& address) {
    const std::string value = "IP:" + address;
    const std::unique_ptr<X509_EXTENSION, void (*)(X509_EXTENSION*)> extension(
        X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, value.c_str()), X509_EXTENSION_free);
    Check(extension && X509_add_ext(certificate, extension.get(), -1) == 1);
}

using X509Pointer = std::unique_ptr<X509, void (*)(X509*)>;

X509Pointer SelfSigned(EVP_PKEY* key, const std::string& address) {
    X509Pointer certificate(X509_new(), X509_free);
    Check(certificate != nullptr);
    X509* x509 = certificate.get();
    X509_set_version(x509, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(x509), 1);
    // An hour back, for a client whose clock is a little late.
    X509_gmtime_adj(X509_getm_notBefore(x509), -3600);
    X509_gmtime_adj(X509_getm_notAfter(x509), oneYear);
    X509_NAME* name = X509_get_subject_name(x509);
    const auto* common = reinterpret_cast<const unsigned char*>("korvel-simulator");
    Check(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, common, -1, -1, 0) == 1);
    Check(X509_set_issuer_name(x509, name) == 1 && X509_set_pubkey(x509, key) == 1);
    AddAddress(x509, address);
    Check(X509_sign(x509, key, EVP_sha256()) > 0);
    return certificate;
}

}  // namespace

Certificate::Certificate(const std::string& address) : context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free) {
    const std::unique_ptr<EVP_PKEY, void (*)(EVP_PKEY*)> key(EVP_EC_gen("P-256"), EVP_PKEY_free);
    Check(context && key);
    const X509Pointer certificate = SelfSigned(key.get(), address);
    Check(SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION) == 1 &&
          SSL_CTX_use_certificate(context.get(), certificate.get()) == 1 &&
          SSL_CTX_use_PrivateKey(context.get(), key.get()) == 1);
}

}  // namespace Korvel::Sim
