#include "host/Database.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <new>
#include <string>
#include <system_error>
#include <utility>

#include "common/IntValue.h"

namespace tavlo::host {
namespace {

namespace fs = std::filesystem;

constexpr std::int32_t kApplicationId = 0x5461766C;

// Each entry takes the file from the version that is its index to the next one. Entries are only ever added.
//
// The columns of a pair have no type, so that each value keeps its kind; the index tells 1 from 1.0, which
// compare as equal.
constexpr auto kUpgrades = std::to_array<const char*>({
    R"(
CREATE TABLE tracker_event (id INTEGER PRIMARY KEY, network_id NOT NULL, event NOT NULL, count INTEGER NOT NULL);
CREATE UNIQUE INDEX tracker_event_pair ON tracker_event (network_id, typeof(network_id), event, typeof(event));
CREATE TABLE used_day (day INTEGER PRIMARY KEY);
CREATE TABLE last_use (
  id INTEGER PRIMARY KEY CHECK (id = 1),
  day INTEGER NOT NULL,
  is_new INTEGER NOT NULL,
  day_value INTEGER NOT NULL,
  week_value INTEGER NOT NULL,
  month_value INTEGER NOT NULL
);
)",
});

// Durable at each commit, also where a plain flush leaves data in the drive; and careful with what a damaged
// or prepared file holds.
constexpr const char* kSettings = R"(
PRAGMA synchronous = FULL;
PRAGMA fullfsync = ON;
PRAGMA cell_size_check = ON;
PRAGMA trusted_schema = OFF;
)";

struct Advice {
  int code;
  const char* text;
};

constexpr auto kAdvice = std::to_array<Advice>({
    {SQLITE_BUSY, "is locked by another program: try again when it is done"},
    {SQLITE_PROTOCOL, "is locked by another program: try again when it is done"},
    {SQLITE_CORRUPT, "is damaged: move it away, and a new one is made"},
    {SQLITE_NOTADB, "is no database: give another path, or move it away, and a new one is made"},
    {SQLITE_READONLY, "cannot be written: check the permissions of the file and its folder"},
    {SQLITE_PERM, "cannot be opened: check the permissions of the file and its folder"},
    {SQLITE_CANTOPEN, "cannot be opened: check that its folder is there, and the permissions of both"},
    {SQLITE_FULL, "cannot grow: free some space on its disk"},
    {SQLITE_IOERR, "cannot be read or written: check its disk"},
});

const char* adviceOn(int code) {
  const auto* const found =
      std::find_if(kAdvice.begin(), kAdvice.end(), [code](const Advice& row) { return row.code == (code & 0xFF); });
  return found == kAdvice.end() ? "refused a statement: move it away, and a new one is made" : found->text;
}

[[noreturn]] void fail(const fs::path& file, const std::string& what) {
  throw DatabaseError("the database " + file.string() + " " + what);
}

// Makes a missing file, readable by its owner only. An existing one is never opened here: closing it would
// give up the locks that this process holds on it.
void makeFile(const fs::path& file) {
  if (file.empty()) fail(file, "has no name: give a path");
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (fs::exists(status) && !fs::is_regular_file(status)) fail(file, "is no regular file: give another path");
  if (std::FILE* const made = std::fopen(file.string().c_str(), "wx")) static_cast<void>(std::fclose(made));
  if (fs::file_size(file, error) == 0) {
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write, error);
  }
}

struct Closer {
  void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

int bind(sqlite3_stmt* statement, int index, const Value& value) {
  switch (value.kind()) {
    case Value::Kind::null: return sqlite3_bind_null(statement, index);
    case Value::Kind::integer:
      if (!value.ifInteger()->fitsSigned()) throw std::invalid_argument("an integer beyond 64 bits cannot be stored");
      return sqlite3_bind_int64(statement, index, static_cast<std::int64_t>(value.ifInteger()->low));
    case Value::Kind::real:
      if (std::isnan(value.ifReal()->value)) throw std::invalid_argument("a real that is no number cannot be stored");
      return sqlite3_bind_double(statement, index, value.ifReal()->value);
    case Value::Kind::text: {
      const std::string_view text = *value.ifText();
      return sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
    }
    case Value::Kind::data: {
      const std::string_view bytes = *value.ifData();
      return sqlite3_bind_blob64(statement, index, bytes.data(), bytes.size(), SQLITE_STATIC);
    }
    default: throw std::invalid_argument("a value that is neither a number nor a text nor data cannot be stored");
  }
}

std::string bytesOf(sqlite3_stmt* statement, int column) {
  const auto* const bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
  if (bytes == nullptr && size > 0) throw std::bad_alloc();
  return bytes == nullptr ? std::string() : std::string(bytes, size);
}

Value valueOf(sqlite3_stmt* statement, int column) {
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER: return sqlite3_column_int64(statement, column);
    case SQLITE_FLOAT: return sqlite3_column_double(statement, column);
    case SQLITE_TEXT: return bytesOf(statement, column);
    case SQLITE_BLOB: return Value::data(bytesOf(statement, column));
    default: return {};
  }
}

}  // namespace

class Database::Connection {
 public:
  Connection(fs::path file, DatabaseOptions options) : file_(std::move(file)) {
    makeFile(file_);
    sqlite3* handle = nullptr;
    const int code = sqlite3_open_v2(reinterpret_cast<const char*>(file_.u8string().c_str()), &handle,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    handle_.reset(handle);
    check(code);
    if (sqlite3_db_readonly(handle, "main") == 1) check(SQLITE_READONLY);
    constexpr std::chrono::milliseconds::rep kLongest = std::numeric_limits<int>::max();
    sqlite3_busy_timeout(handle, static_cast<int>(std::min(options.busyTimeout.count(), kLongest)));
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  }

  // The version of the file's tables, 0 for a new file.
  [[nodiscard]] std::size_t version() {
    const Row row = run(R"(
        SELECT application_id, user_version, (SELECT count(*) FROM sqlite_master)
        FROM pragma_application_id, pragma_user_version)")
                        .front();
    const std::int32_t owner = intValue(row[0]);
    const std::int32_t version = intValue(row[1]);
    if (owner == 0 && version == 0 && intValue(row[2]) == 0) return 0;
    if (owner != kApplicationId) fail(file_, "belongs to another program: give another path");
    if (version < 1) check(SQLITE_CORRUPT);
    if (static_cast<std::size_t>(version) > kUpgrades.size()) {
      fail(file_, "was made by a newer version of this program: update the program, or give another path");
    }
    return static_cast<std::size_t>(version);
  }

  void configure() {
    execute(kSettings);
    // Where this fails, since another process reads the new file or its disk cannot share memory, the file
    // works all the same, and the next opening tries again.
    sqlite3_exec(handle_.get(), "PRAGMA journal_mode = WAL", nullptr, nullptr, nullptr);
  }

  void upgradeFrom(std::size_t version) {
    for (; version < kUpgrades.size(); ++version) execute(kUpgrades[version]);
    execute(("PRAGMA application_id = " + std::to_string(kApplicationId)).c_str());
    execute(("PRAGMA user_version = " + std::to_string(kUpgrades.size())).c_str());
  }

  Rows run(const char* sql, const Row& parameters = {}) {
    sqlite3_stmt* prepared = nullptr;
    check(sqlite3_prepare_v2(handle_.get(), sql, -1, &prepared, nullptr));
    const std::unique_ptr<sqlite3_stmt, Closer> statement(prepared);
    for (std::size_t i = 0; i < parameters.size(); ++i) {
      check(bind(prepared, static_cast<int>(i) + 1, parameters[i]));
    }

    Rows rows;
    int code = sqlite3_step(prepared);
    for (; code == SQLITE_ROW; code = sqlite3_step(prepared)) {
      Row& row = rows.emplace_back();
      for (int column = 0; column < sqlite3_column_count(prepared); ++column) {
        row.push_back(valueOf(prepared, column));
      }
    }
    if (code != SQLITE_DONE) check(code);
    return rows;
  }

  void rollBack() noexcept { sqlite3_exec(handle_.get(), "ROLLBACK", nullptr, nullptr, nullptr); }

 private:
  void execute(const char* script) { check(sqlite3_exec(handle_.get(), script, nullptr, nullptr, nullptr)); }

  void check(int code) const {
    if (code == SQLITE_OK) return;
    if (code == SQLITE_NOMEM) throw std::bad_alloc();
    fail(file_, std::string(adviceOn(code)) + " (" + sqlite3_errstr(code) + ")");
  }

  const fs::path file_;
  std::unique_ptr<sqlite3, Closer> handle_;
};

// An absolute path, since some relative names stand for databases that are no files.
Database::Database(const fs::path& file, DatabaseOptions options)
    : connection_(std::make_unique<Connection>(file.empty() ? file : fs::absolute(file), options)) {
  if (connection_->version() < kUpgrades.size()) {
    Transaction transaction(*this);
    connection_->upgradeFrom(connection_->version());
    transaction.commit();
  }
  connection_->configure();
}

Database::~Database() = default;

Database::Rows Database::run(const char* statement, const Row& parameters) {
  const std::lock_guard lock(mutex_);
  return connection_->run(statement, parameters);
}

Database::Transaction::Transaction(Database& database) : database_(database), lock_(database.mutex_) {
  database_.connection_->run("BEGIN IMMEDIATE");
}

Database::Transaction::~Transaction() {
  if (open_) database_.connection_->rollBack();
}

Database::Rows Database::Transaction::run(const char* statement, const Row& parameters) {
  return database_.connection_->run(statement, parameters);
}

void Database::Transaction::commit() {
  database_.connection_->run("COMMIT");
  open_ = false;
}

}  // namespace tavlo::host
