#pragma once

#include "util/Result.h"

#include <optional>
#include <string>
#include <vector>

namespace halvane::server {

class Company;

/// A small company to try the client with: seven workplaces and a few employees.
struct SampleCompany {
    struct Account {
        std::string userName;
        std::optional<std::string> password;  ///< absent: the user was there before and keeps the old one
    };
    /// Adds what is missing. `password` is everybody's; absent: a random one each. Throws DatabaseError.
    static std::vector<Account> addTo(Company& company, const std::string& mailDomain, const std::optional<std::string>& password);
};

}  // namespace halvane::server
