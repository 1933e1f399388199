#pragma once

#include "server/Clock.h"
#include "server/store/Database.h"
#include "util/Bytes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace halvane::server {

/// The certificate files that wait to be fetched, one a user, each under a secret address. The password
/// of a file is not kept. Any thread; throws DatabaseError.
class CertificateStore {
public:
    /// The client fetches it at once; a person who looks at the address later finds nothing.
    static constexpr std::chrono::minutes kDownloadLifetime{15};

    struct File {
        std::string name;
        util::Bytes pkcs12;
    };
    struct Issued {
        std::string serial;
        Time notAfter;
        util::Bytes pkcs12;
    };

    CertificateStore(Database& database, Clock clock) : database_(database), clock_(std::move(clock)) {}

    /// Replaces the user's file and answers the secret part of its address; the address before is gone.
    std::string put(std::int64_t userId, const Issued& issued);
    std::optional<File> fetch(std::string_view secret);

private:
    Database& database_;
    Clock clock_;
};

}  // namespace halvane::server
