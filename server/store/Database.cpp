#include "server/store/Database.h"

#include "server/store/Schema.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

namespace halvane::server {

namespace {

/// Longer than any transaction of ours; only then does a second process see "locked".
constexpr int kBusyMilliseconds = 5000;

}  // namespace

Database::Database(const std::filesystem::path& file) {
    // SQLite gives its side files the mode of the database, so making that first protects all of them.
    const int made = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (made < 0) throw DatabaseError("cannot open " + file.string());
    ::close(made);

    sqlite3* connection = nullptr;
    const int opened = sqlite3_open_v2(file.c_str(), &connection, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    connection_.reset(connection);
    if (opened != SQLITE_OK) throw DatabaseError("cannot open " + file.string() + ": " + sqlite3_errstr(opened));
    sqlite3_busy_timeout(connection, kBusyMilliseconds);
    runScript("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL; PRAGMA foreign_keys = ON;");
    migrate();
}

Database::~Database() = default;

void Database::Closer::operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }

std::int64_t Database::lastInsertedId() const { return sqlite3_last_insert_rowid(connection_.get()); }

void Database::runScript(const char* sql) {
    if (sqlite3_exec(connection_.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw DatabaseError(std::string("database: ") + sqlite3_errmsg(connection_.get()));
    }
}

void Database::migrate() {
    Transaction transaction(*this);
    std::size_t version = 0;
    {
        auto asked = query("PRAGMA user_version");
        if (asked.next()) version = static_cast<std::size_t>(asked.integer(0));
    }
    if (version > kMigrations.size()) throw DatabaseError("the database was written by a newer version of this program");
    for (; version < kMigrations.size(); ++version) runScript(kMigrations[version]);
    runScript(("PRAGMA user_version = " + std::to_string(version)).c_str());
    transaction.commit();
}

Database::Transaction::Transaction(Database& database) : lock_(database.mutex_), database_(database) {
    database_.runScript("BEGIN IMMEDIATE");
}

Database::Transaction::~Transaction() {
    if (open_) sqlite3_exec(database_.connection_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Database::Transaction::commit() {
    database_.runScript("COMMIT");
    open_ = false;
}

}  // namespace halvane::server
