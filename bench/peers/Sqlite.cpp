#include "bench/peers/Sqlite.h"

#include <sqlite3.h>

#include <stdexcept>

namespace tavlo::bench::peers {
namespace {

constexpr const char* kSetUp = R"(PRAGMA journal_mode = DELETE;
PRAGMA synchronous = FULL;
CREATE TABLE settings (name TEXT PRIMARY KEY, value TEXT NOT NULL) WITHOUT ROWID;)";
constexpr const char* kUpsert = R"(INSERT INTO settings (name, value) VALUES (?1, ?2)
ON CONFLICT (name) DO UPDATE SET value = excluded.value)";

int bind(sqlite3_stmt* statement, int place, std::string_view text) {
  return sqlite3_bind_text(statement, place, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

}  // namespace

SqliteSettings::SqliteSettings(const std::string& path) {
  expect(sqlite3_open(path.c_str(), &database_) == SQLITE_OK);
  expect(sqlite3_exec(database_, kSetUp, nullptr, nullptr, nullptr) == SQLITE_OK);
  expect(sqlite3_prepare_v2(database_, kUpsert, -1, &upsert_, nullptr) == SQLITE_OK);
}

SqliteSettings::~SqliteSettings() {
  sqlite3_finalize(upsert_);
  sqlite3_close(database_);
}

void SqliteSettings::put(std::string_view key, std::string_view value) {
  expect(bind(upsert_, 1, key) == SQLITE_OK && bind(upsert_, 2, value) == SQLITE_OK);
  expect(sqlite3_step(upsert_) == SQLITE_DONE);
  expect(sqlite3_reset(upsert_) == SQLITE_OK);
}

void SqliteSettings::expect(bool succeeded) const {
  if (!succeeded) throw std::runtime_error(std::string("SQLite: ") + sqlite3_errmsg(database_));
}

}  // namespace tavlo::bench::peers
