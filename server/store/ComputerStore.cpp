#include "server/store/ComputerStore.h"

namespace halvane::server {

namespace {

const std::string kSelect =
    "SELECT sn, mac, host_name, system, user_name, last_seen, locked, lost FROM computers LEFT JOIN users ON users.id = computers.user_id ";

Computer computerOf(const Statement& row) {
    return {row.text(0), row.text(1), row.text(2), row.text(3), row.text(4), row.time(5), row.boolean(6), row.boolean(7)};
}

}  // namespace

void ComputerStore::signedIn(const Facts& facts, std::int64_t userId) {
    if (facts.sn.empty()) return;
    database_.run(
        "INSERT INTO computers (sn, mac, host_name, system, user_id, last_seen) VALUES (?, ?, ?, ?, ?, ?)"
        " ON CONFLICT (sn) DO UPDATE SET mac = excluded.mac, host_name = excluded.host_name, system = excluded.system,"
        " user_id = excluded.user_id, last_seen = excluded.last_seen",
        facts.sn, facts.mac, facts.hostName, facts.system, userId, clock_());
}

std::optional<Computer> ComputerStore::reported(std::string_view sn, std::int64_t userId) {
    if (sn.empty()) return std::nullopt;
    database_.run(
        "INSERT INTO computers (sn, mac, host_name, system, user_id, last_seen) VALUES (?, '', '', '', ?, ?)"
        " ON CONFLICT (sn) DO UPDATE SET user_id = excluded.user_id, last_seen = excluded.last_seen",
        sn, userId, clock_());
    return find(sn);
}

std::optional<Computer> ComputerStore::find(std::string_view sn) {
    auto row = database_.query(kSelect + "WHERE sn = ?", sn);
    if (!row.next()) return std::nullopt;
    return computerOf(row);
}

std::vector<Computer> ComputerStore::all() {
    std::vector<Computer> computers;
    auto row = database_.query(kSelect + "ORDER BY sn");
    while (row.next()) computers.push_back(computerOf(row));
    return computers;
}

bool ComputerStore::mark(std::string_view sn, Mark mark) {
    switch (mark) {
        case Mark::Locked:
            return database_.run("UPDATE computers SET locked = 1 WHERE sn = ?", sn) > 0;
        case Mark::Unlocked:
            return database_.run("UPDATE computers SET locked = 0 WHERE sn = ?", sn) > 0;
        case Mark::Lost:
            return database_.run("UPDATE computers SET lost = 1 WHERE sn = ?", sn) > 0;
        case Mark::Found:
            return database_.run("UPDATE computers SET lost = 0 WHERE sn = ?", sn) > 0;
    }
    return false;
}

}  // namespace halvane::server
