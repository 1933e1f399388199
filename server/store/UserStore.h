#pragma once

#include "server/store/Database.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace halvane::server {

/// An employee. Texts are never absent here; an unknown one is empty.
struct User {
    std::int64_t id = 0;    ///< given by the store
    std::string userName;   ///< login name, an e-mail address
    std::string shortName;  ///< login name before the "@"; names the certificate
    std::string nickName;
    std::string departmentName;
    std::string jobNumber;  ///< empty: made from the id
    std::string roleId;
    std::string roleName;
    std::string status = "1";
    std::string workAddress;  ///< value of a workplace, or empty

    /// File name of the certificate in the user's record.
    [[nodiscard]] std::string certificateFileName() const { return shortName + ".pfx"; }
};

/// Any thread; throws DatabaseError.
class UserStore {
public:
    explicit UserStore(Database& database) : database_(database) {}

    struct Credentials {
        User user;
        std::string passwordHash;
    };

    /// The user with its id and job number; absent when the login name, or the part before its "@", is taken.
    std::optional<User> add(User user, const std::string& passwordHash);
    std::optional<User> find(std::int64_t id);
    /// By login name or by short name, upper and lower case alike.
    std::optional<Credentials> findByName(std::string_view name);
    std::vector<User> all();
    void setPasswordHash(std::int64_t id, const std::string& passwordHash);
    void setWorkAddress(std::int64_t id, std::string_view value);
    /// With sessions, certificate and codes.
    void remove(std::int64_t id);

private:
    Database& database_;
};

}  // namespace halvane::server
