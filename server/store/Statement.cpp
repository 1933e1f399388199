#include "server/store/Statement.h"

#include <sqlite3.h>

namespace halvane::server {

Statement::Statement(sqlite3& connection, std::recursive_mutex& mutex, std::string_view sql) : lock_(mutex), connection_(connection) {
    sqlite3_stmt* statement = nullptr;
    check(sqlite3_prepare_v2(&connection_, sql.data(), static_cast<int>(sql.size()), &statement, nullptr));
    statement_.reset(statement);
}

void Statement::Finalizer::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

void Statement::check(int code) const {
    if (code != SQLITE_OK) throw DatabaseError(std::string("database: ") + sqlite3_errmsg(&connection_));
}

void Statement::bind(std::string_view text) {
    // SQLite takes a null pointer for an SQL null; an empty text is one all the same.
    const char* bytes = text.data() == nullptr ? "" : text.data();
    check(sqlite3_bind_text64(statement_.get(), ++bound_, bytes, text.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
}

void Statement::bind(std::int64_t number) { check(sqlite3_bind_int64(statement_.get(), ++bound_, number)); }

void Statement::bindBytes(const util::Bytes& bytes) {
    check(sqlite3_bind_blob64(statement_.get(), ++bound_, bytes.data(), bytes.size(), SQLITE_TRANSIENT));
}

bool Statement::next() {
    const int code = sqlite3_step(statement_.get());
    if (code == SQLITE_ROW) return true;
    if (code != SQLITE_DONE) check(code);
    return false;
}

int Statement::finish() {
    while (next()) {
    }
    return sqlite3_changes(&connection_);
}

std::string Statement::text(int column) const {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
    return bytes == nullptr ? std::string() : std::string(bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column)));
}

util::Bytes Statement::bytes(int column) const {
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement_.get(), column));
    return bytes == nullptr ? util::Bytes() : util::Bytes(bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column)));
}

std::int64_t Statement::integer(int column) const { return sqlite3_column_int64(statement_.get(), column); }

}  // namespace halvane::server
