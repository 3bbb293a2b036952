#include "Support/TestCertificates.h"

#include "Support/TemporaryDirectory.h"

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <stdexcept>
#include <utility>
#include <vector>

namespace tavik::test {
namespace {

constexpr long day = 86400;

void check(bool succeeded) {
    if (!succeeded) throw std::runtime_error("libcrypto failed");
}

std::shared_ptr<EVP_PKEY> makeKey() {
    std::shared_ptr<EVP_PKEY> key(EVP_EC_gen("P-256"), EVP_PKEY_free);
    check(key != nullptr);
    return key;
}

/// A certificate for `name`, valid from yesterday, that has still to be signed. `extensions` are
/// pairs of an identifier and its value.
std::shared_ptr<X509> makeCertificate(const std::string& name, long seconds, EVP_PKEY* key,
                                      const std::vector<std::pair<int, std::string>>& extensions) {
    std::shared_ptr<X509> certificate(X509_new(), X509_free);
    X509* const raw = certificate.get();
    check(raw != nullptr);
    X509_set_version(raw, X509_VERSION_3);
    static long serial = 0;
    ASN1_INTEGER_set(X509_get_serialNumber(raw), ++serial);
    X509_gmtime_adj(X509_getm_notBefore(raw), -day);
    X509_gmtime_adj(X509_getm_notAfter(raw), seconds - day);
    check(X509_NAME_add_entry_by_txt(X509_get_subject_name(raw), "CN", MBSTRING_UTF8,
                                     reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1,
                                     0)
          == 1);
    check(X509_set_pubkey(raw, key) == 1);
    for (const auto& [identifier, value] : extensions) {
        const std::unique_ptr<X509_EXTENSION, void (*)(X509_EXTENSION*)> extension(
            X509V3_EXT_conf_nid(nullptr, nullptr, identifier, value.c_str()), X509_EXTENSION_free);
        check(extension != nullptr && X509_add_ext(raw, extension.get(), -1) == 1);
    }
    return certificate;
}

/// What `write` puts into a BIO.
template<typename Write>
std::string pem(const Write& write) {
    const std::unique_ptr<BIO, void (*)(BIO*)> memory(BIO_new(BIO_s_mem()), BIO_free_all);
    check(memory != nullptr && write(memory.get()) == 1);
    std::string text(static_cast<std::size_t>(BIO_pending(memory.get())), '\0');
    BIO_read(memory.get(), text.data(), static_cast<int>(text.size()));
    return text;
}

std::string pem(X509* certificate) {
    return pem([certificate](BIO* target) { return PEM_write_bio_X509(target, certificate); });
}

std::string pem(EVP_PKEY* key) {
    return pem([key](BIO* target) {
        return PEM_write_bio_PrivateKey(target, key, nullptr, nullptr, 0, nullptr, nullptr);
    });
}

} // namespace

TestAuthority::TestAuthority(const std::string& name) : key(makeKey()) {
    certificate = makeCertificate(
        name, 2 * day, key.get(),
        {{NID_basic_constraints, "critical,CA:TRUE"}, {NID_key_usage, "critical,keyCertSign"}});
    X509_set_issuer_name(certificate.get(), X509_get_subject_name(certificate.get()));
    check(X509_sign(certificate.get(), key.get(), EVP_sha256()) > 0);
}

void TestAuthority::write(const std::string& path) const {
    writeFile(path, pem(certificate.get()));
}

void TestAuthority::issue(const std::string& host, long seconds, const std::string& path) const {
    const auto ownKey = makeKey();
    const auto issued =
        makeCertificate(host, seconds, ownKey.get(), {{NID_subject_alt_name, "DNS:" + host}});
    X509_set_issuer_name(issued.get(), X509_get_subject_name(certificate.get()));
    check(X509_sign(issued.get(), key.get(), EVP_sha256()) > 0);
    writeFile(path, pem(issued.get()) + pem(ownKey.get()));
}

} // namespace tavik::test
