#include "server/store/UserStore.h"

namespace halvane::server {

namespace {

const std::string kSelect =
    "SELECT id, user_name, short_name, nick_name, department_name, job_number, role_id, role_name, status, work_address, password_hash "
    "FROM users ";

User userOf(const Statement& row) {
    return {.id = row.integer(0),
            .userName = row.text(1),
            .shortName = row.text(2),
            .nickName = row.text(3),
            .departmentName = row.text(4),
            .jobNumber = row.text(5),
            .roleId = row.text(6),
            .roleName = row.text(7),
            .status = row.text(8),
            .workAddress = row.text(9)};
}

}  // namespace

std::optional<User> UserStore::add(User user, const std::string& passwordHash) {
    Database::Transaction transaction(database_);
    if (findByName(user.userName) || findByName(user.shortName)) return std::nullopt;
    database_.run(
        "INSERT INTO users (user_name, short_name, password_hash, nick_name, department_name, job_number, role_id, role_name, status,"
        " work_address) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
        user.userName, user.shortName, passwordHash, user.nickName, user.departmentName, user.jobNumber, user.roleId, user.roleName,
        user.status, user.workAddress);
    user.id = database_.lastInsertedId();
    if (user.jobNumber.empty()) {
        user.jobNumber = "HV" + std::to_string(user.id);
        database_.run("UPDATE users SET job_number = ? WHERE id = ?", user.jobNumber, user.id);
    }
    transaction.commit();
    return user;
}

std::optional<User> UserStore::find(std::int64_t id) {
    auto row = database_.query(kSelect + "WHERE id = ?", id);
    if (!row.next()) return std::nullopt;
    return userOf(row);
}

std::optional<UserStore::Credentials> UserStore::findByName(std::string_view name) {
    auto row = database_.query(kSelect + "WHERE user_name = ?1 OR short_name = ?1", name);
    if (!row.next()) return std::nullopt;
    return Credentials{userOf(row), row.text(10)};
}

std::vector<User> UserStore::all() {
    std::vector<User> users;
    auto row = database_.query(kSelect + "ORDER BY id");
    while (row.next()) users.push_back(userOf(row));
    return users;
}

void UserStore::setPasswordHash(std::int64_t id, const std::string& passwordHash) {
    database_.run("UPDATE users SET password_hash = ? WHERE id = ?", passwordHash, id);
}

void UserStore::setWorkAddress(std::int64_t id, std::string_view value) {
    database_.run("UPDATE users SET work_address = ? WHERE id = ?", value, id);
}

void UserStore::remove(std::int64_t id) { database_.run("DELETE FROM users WHERE id = ?", id); }

}  // namespace halvane::server
