#pragma once

#include "util/Bytes.h"

#include <memory>
#include <string>
#include <string_view>

namespace halvane::test {

/// A private Ed25519 key of the test's own.
class TestSigner {
public:
    TestSigner();
    ~TestSigner();
    TestSigner(const TestSigner&) = delete;
    TestSigner& operator=(const TestSigner&) = delete;

    /// Base64 of the public half.
    [[nodiscard]] std::string publicKey() const;
    /// Base64.
    [[nodiscard]] std::string sign(std::string_view bytes) const;
    /// A feed's text with the line that signs it.
    [[nodiscard]] util::Bytes signedFeed(const std::string& text) const { return text + "<!-- signature: " + sign(text) + " -->\n"; }

private:
    struct Key;
    std::unique_ptr<Key> key_;
};

}  // namespace halvane::test
