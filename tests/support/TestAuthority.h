#pragma once

#include <memory>
#include <optional>
#include <string>

namespace halvane::test {

/// A certificate with its key, made for one test run. Texts are PEM unless named otherwise.
struct TestIdentity {
    std::string certificate;
    std::string key;
    std::string der;  ///< the certificate
};

/// A certificate authority in memory.
class TestAuthority {
public:
    enum class Validity { Now, Expired, NotYet };

    explicit TestAuthority(const std::string& name = "Test authority");
    /// An intermediate one.
    TestAuthority(const std::string& name, const TestAuthority& issuer);
    ~TestAuthority();
    TestAuthority(const TestAuthority&) = delete;
    TestAuthority& operator=(const TestAuthority&) = delete;

    /// Its own certificate.
    [[nodiscard]] const TestIdentity& root() const;
    /// For a server whose names are `subjectAltName` ("IP:127.0.0.1,DNS:localhost").
    [[nodiscard]] TestIdentity issueServer(const std::string& subjectAltName, Validity validity = Validity::Now) const;
    [[nodiscard]] TestIdentity issueClient(const std::string& commonName, Validity validity = Validity::Now) const;

    static TestIdentity selfSigned(const std::string& subjectAltName);
    /// Certificate and key under `passphrase`; without the key when `key` is empty.
    static std::string pkcs12(const TestIdentity& identity, const std::optional<std::string>& passphrase);

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace halvane::test
