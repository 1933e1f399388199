#pragma once

#include <array>

namespace halvane::server {

/// What makes version n + 1 of the tables out of version n. Databases in the field have run them:
/// append, never edit.
inline constexpr std::array<const char*, 2> kMigrations = {R"sql(
CREATE TABLE users (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    user_name TEXT NOT NULL UNIQUE COLLATE NOCASE,
    short_name TEXT NOT NULL UNIQUE COLLATE NOCASE,
    password_hash TEXT NOT NULL,
    nick_name TEXT NOT NULL,
    department_name TEXT NOT NULL,
    job_number TEXT NOT NULL,
    role_id TEXT NOT NULL,
    role_name TEXT NOT NULL,
    status TEXT NOT NULL,
    work_address TEXT NOT NULL
);
INSERT INTO sqlite_sequence (name, seq) VALUES ('users', 1000);

CREATE TABLE sessions (
    token_hash TEXT PRIMARY KEY,
    user_id INTEGER NOT NULL REFERENCES users (id) ON DELETE CASCADE,
    expires_at INTEGER NOT NULL
) WITHOUT ROWID;
CREATE INDEX sessions_of_user ON sessions (user_id);

CREATE TABLE computers (
    sn TEXT PRIMARY KEY,
    mac TEXT NOT NULL,
    host_name TEXT NOT NULL,
    system TEXT NOT NULL,
    user_id INTEGER REFERENCES users (id) ON DELETE SET NULL,
    last_seen INTEGER NOT NULL,
    locked INTEGER NOT NULL DEFAULT 0,
    lost INTEGER NOT NULL DEFAULT 0
) WITHOUT ROWID;
CREATE INDEX computers_of_user ON computers (user_id);

CREATE TABLE workplaces (
    position INTEGER PRIMARY KEY,
    value TEXT NOT NULL UNIQUE,
    name TEXT NOT NULL
);

CREATE TABLE certificates (
    user_id INTEGER PRIMARY KEY REFERENCES users (id) ON DELETE CASCADE,
    serial TEXT NOT NULL,
    not_after INTEGER NOT NULL,
    pkcs12 BLOB NOT NULL,
    download_hash TEXT NOT NULL UNIQUE,
    download_until INTEGER NOT NULL
);

CREATE TABLE uninstall_codes (
    user_id INTEGER NOT NULL REFERENCES users (id) ON DELETE CASCADE,
    host_name TEXT NOT NULL,
    code_hash TEXT NOT NULL,
    expires_at INTEGER NOT NULL,
    tries INTEGER NOT NULL DEFAULT 0,
    PRIMARY KEY (user_id, host_name)
) WITHOUT ROWID;
)sql",
                                                           R"sql(
CREATE TABLE packages (
    position INTEGER PRIMARY KEY AUTOINCREMENT,
    name TEXT NOT NULL,
    version TEXT NOT NULL,
    architecture TEXT NOT NULL,
    minimum_system TEXT NOT NULL,
    notes TEXT NOT NULL,
    length INTEGER NOT NULL,
    added_at INTEGER NOT NULL,
    signature BLOB NOT NULL,
    UNIQUE (name, version, architecture)
);
)sql"};

}  // namespace halvane::server
