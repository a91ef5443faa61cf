// Database: the host's database file, which TrackerDatabase and UniqueUserCounters share.
//
//   auto database = std::make_shared<tavlo::host::Database>(container / "Library" / "tracker.sqlite");
//
// Values   a Row's values are null, integers of 64 bits, reals, texts and data, each kept in its own kind.
// Absent   a missing or empty file becomes a new database, mode 0600. Its folder must be there.
// Durable  what a returned run() or commit() changed survives a crash of the process and of the machine.
//          A crash in between leaves all or nothing of it.
// Threads  any thread, any time; one statement or transaction at a time, others wait. Any number of processes
//          may have the file open; one writes at a time, and the others wait for it busyTimeout at most. A
//          process that forks opens its own Database in the child.
// Throws   DatabaseError: a file that is damaged, no database, another program's, of a newer version, locked
//          for too long, not readable or not writable, and a full disk. Such a file is never overwritten,
//          and the Database stays usable: a later call may succeed.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <vector>

#include "common/Value.h"

namespace tavlo::host {

// Says what failed, on which file, and what to do.
class DatabaseError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct DatabaseOptions {
  std::chrono::milliseconds busyTimeout{2000};
};

class Database {
 public:
  using Row = std::vector<Value>;
  using Rows = std::vector<Row>;

  // Opens the file, makes it when it is missing, and brings its tables up to date.
  explicit Database(const std::filesystem::path& file, DatabaseOptions options = {});
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  ~Database();

  // Runs one statement with its parameters "?1", "?2", ... and gives the rows that it answers, all of one
  // moment. Throws std::invalid_argument for a parameter of a kind that a Row cannot hold.
  Rows run(const char* statement, const Row& parameters = {});

  // Several statements that happen together or not at all. Other writers wait from here on until the
  // transaction ends; without commit() its destructor undoes it. The owning thread must not call the
  // Database's own run() meanwhile.
  class Transaction {
   public:
    explicit Transaction(Database& database);
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction();

    Rows run(const char* statement, const Row& parameters = {});
    void commit();

   private:
    Database& database_;
    const std::lock_guard<std::mutex> lock_;
    bool open_ = true;
  };

 private:
  class Connection;

  std::mutex mutex_;  // guards the connection
  std::unique_ptr<Connection> connection_;
};

}  // namespace tavlo::host
