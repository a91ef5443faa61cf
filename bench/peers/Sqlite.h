// SQLite: one table of settings. Only where peers::kSqlite is true.
#pragma once

#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace tavlo::bench::peers {

// Durable when put() returns (synchronous=FULL, journal_mode=DELETE). Throws std::runtime_error on any failure.
class SqliteSettings {
 public:
  explicit SqliteSettings(const std::string& path);
  SqliteSettings(const SqliteSettings&) = delete;
  SqliteSettings& operator=(const SqliteSettings&) = delete;
  ~SqliteSettings();

  void put(std::string_view key, std::string_view value);

 private:
  void expect(bool succeeded) const;

  sqlite3* database_ = nullptr;
  sqlite3_stmt* upsert_ = nullptr;
};

}  // namespace tavlo::bench::peers
