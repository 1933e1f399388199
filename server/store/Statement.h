#pragma once

#include "util/Bytes.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace halvane::server {

/// The database cannot be read or written: no space, no permission, a broken file, locked for too long.
/// Nothing a caller could mend; the request or command as a whole fails.
class DatabaseError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A prepared statement, by which alone values reach the database: no value can become SQL.
/// Made by Database; lives for one use in one scope.
class Statement {
public:
    Statement(sqlite3& connection, std::recursive_mutex& mutex, std::string_view sql);

    void bind(std::string_view text);
    void bind(const std::string& text) { bind(std::string_view(text)); }
    void bind(const char* text) { bind(std::string_view(text)); }
    void bind(std::int64_t number);
    void bind(int number) { bind(static_cast<std::int64_t>(number)); }
    void bind(std::chrono::sys_seconds time) { bind(static_cast<std::int64_t>(time.time_since_epoch().count())); }
    void bindBytes(const util::Bytes& bytes);

    /// The next row; false when there is none.
    bool next();
    /// Runs to the end; answers how many rows were changed.
    int finish();

    /// Columns of the row, from 0; an SQL null reads as empty, 0, false.
    [[nodiscard]] std::string text(int column) const;
    [[nodiscard]] util::Bytes bytes(int column) const;
    [[nodiscard]] std::int64_t integer(int column) const;
    [[nodiscard]] bool boolean(int column) const { return integer(column) != 0; }
    [[nodiscard]] std::chrono::sys_seconds time(int column) const {
        return std::chrono::sys_seconds(std::chrono::seconds(integer(column)));
    }

private:
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const;
    };
    void check(int code) const;

    std::unique_lock<std::recursive_mutex> lock_;
    sqlite3& connection_;
    std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
    int bound_ = 0;
};

}  // namespace halvane::server
