#pragma once

#include "server/Clock.h"
#include "server/store/Database.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace halvane::server {

/// The codes that allow a user to remove the client from one computer. Any thread; throws DatabaseError.
class UninstallCodeStore {
public:
    static constexpr std::chrono::minutes kLifetime{10};
    static constexpr int kTries = 5;

    enum class Verdict {
        Accepted,  ///< and used up
        Wrong,     ///< one try fewer
        NoCode     ///< none was asked for, or it is too old, used or tried too often
    };

    UninstallCodeStore(Database& database, Clock clock) : database_(database), clock_(std::move(clock)) {}

    /// Six new digits; those before are void.
    std::string make(std::int64_t userId, std::string_view hostName);
    Verdict use(std::int64_t userId, std::string_view hostName, std::string_view code);

private:
    Database& database_;
    Clock clock_;
};

}  // namespace halvane::server
