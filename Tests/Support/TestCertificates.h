#pragma once

#include <openssl/types.h>

#include <memory>
#include <string>

namespace tavik::test {

/// A certificate authority that nobody trusts unless told to, for servers of tests.
class TestAuthority {
public:
    explicit TestAuthority(const std::string& name);

    /// Writes the authority's own certificate, to be trusted by a client.
    void write(const std::string& path) const;

    /// Writes a certificate for the server `host`, and its key, to one file. It is valid from a day
    /// ago for `seconds`, which may have run out.
    void issue(const std::string& host, long seconds, const std::string& path) const;

private:
    std::shared_ptr<EVP_PKEY> key;
    std::shared_ptr<X509> certificate;
};

} // namespace tavik::test
