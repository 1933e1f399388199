#pragma once

#include "server/store/Statement.h"

#include <filesystem>
#include <memory>
#include <mutex>
#include <string_view>

struct sqlite3;

namespace halvane::server {

/// The company's database: one SQLite file that several processes may use at a time. The door to SQLite.
///
/// One connection, used by any thread: a statement holds the connection's lock while it lives, a
/// transaction until it ends. What takes long (hashing, signing) must happen while neither lives.
class Database {
public:
    /// Opens or makes `file` (0600) and brings its tables up to date. Throws DatabaseError, also for a
    /// file that a newer version of this program has written.
    explicit Database(const std::filesystem::path& file);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// A query whose "?" are bound to the values in order; read it with next().
    template <typename... Values>
    [[nodiscard]] Statement query(std::string_view sql, const Values&... values) {
        Statement statement(*connection_, mutex_, sql);
        (statement.bind(values), ...);
        return statement;
    }
    /// Runs a statement without rows; answers how many rows it changed.
    template <typename... Values>
    int run(std::string_view sql, const Values&... values) {
        return query(sql, values...).finish();
    }

    [[nodiscard]] std::int64_t lastInsertedId() const;

    /// Several statements that happen together or not at all; rolled back unless commit() is reached.
    /// Takes the write lock of the file at once, so that what was read is still true when writing.
    class Transaction {
    public:
        explicit Transaction(Database& database);
        ~Transaction();
        Transaction(const Transaction&) = delete;
        Transaction& operator=(const Transaction&) = delete;
        void commit();

    private:
        std::unique_lock<std::recursive_mutex> lock_;
        Database& database_;
        bool open_ = true;
    };

private:
    struct Closer {
        void operator()(sqlite3* connection) const;
    };
    void migrate();
    void runScript(const char* sql);

    std::recursive_mutex mutex_;
    std::unique_ptr<sqlite3, Closer> connection_;  ///< guarded by mutex_
};

}  // namespace halvane::server
