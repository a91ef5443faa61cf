#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <iostream>
#include <random>
#include <string>
#include <thread>

#include "host/Database.h"
#include "tests/host/FileSizeLimit.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::host {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::ElementsAre;

constexpr DatabaseOptions kImpatient{.busyTimeout = 1ms};

class DatabaseTrouble : public testing::Test {
 protected:
  // A database with 200 days in it, closed.
  void makeDatabase() const {
    Database database(file);
    Database::Transaction transaction(database);
    for (int day = 0; day < 200; ++day) transaction.run("INSERT INTO used_day (day) VALUES (?1)", {day});
    transaction.commit();
  }

  const test::TemporaryFolder folder;
  const fs::path file = folder / "tracker.sqlite";
};

std::string errorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const DatabaseError& error) {
    return error.what();
  }
  return "nothing was thrown";
}

struct Broken {
  const char* name;
  std::function<void(const fs::path&)> make;
  const char* message;  // after "the database FILE "
};

void writeHeaderByte(const fs::path& file, std::size_t at, char byte) {
  std::string bytes = test::readFile(file);
  bytes.at(at) = byte;
  test::writeFile(file, bytes);
}

class DatabaseTroubleWith : public DatabaseTrouble, public testing::WithParamInterface<Broken> {};

TEST_P(DatabaseTroubleWith, IsAClearErrorAndChangesNothing) {
  makeDatabase();
  GetParam().make(file);
  const bool regular = fs::is_regular_file(file);
  const std::string before = regular ? test::readFile(file) : "";

  const std::string error = errorOf([&] { Database(file, kImpatient).run("SELECT sum(day) FROM used_day"); });

  EXPECT_EQ(error, "the database " + file.string() + " " + GetParam().message);
  if (regular) {
    EXPECT_EQ(test::readFile(file), before);
  }
}

constexpr const char* kNoDatabase =
    "is no database: give another path, or move it away, and a new one is made (file is not a database)";
constexpr const char* kDamaged = "is damaged: move it away, and a new one is made (database disk image is malformed)";
constexpr const char* kForeign = "belongs to another program: give another path";
constexpr const char* kIrregular = "is no regular file: give another path";
constexpr const char* kNewer = "was made by a newer version of this program: update the program, or give another path";

INSTANTIATE_TEST_SUITE_P(
    All, DatabaseTroubleWith,
    testing::Values(
        Broken{"ShortText", [](const fs::path& path) { test::writeFile(path, "hello"); }, kNoDatabase},
        Broken{"LongText", [](const fs::path& path) { test::writeFile(path, std::string(9000, 'x')); }, kNoDatabase},
        Broken{"ANewerVersion", [](const fs::path& path) { writeHeaderByte(path, 63, 2); }, kNewer},
        Broken{"AnImpossibleVersion", [](const fs::path& path) { writeHeaderByte(path, 60, '\xff'); }, kDamaged},
        Broken{"NoVersion", [](const fs::path& path) { writeHeaderByte(path, 63, 0); }, kDamaged},
        Broken{"AnotherOwner", [](const fs::path& path) { writeHeaderByte(path, 68, 'X'); }, kForeign},
        Broken{"TablesOfNoOwner",
               [](const fs::path& path) {
                 for (const std::size_t at : {63U, 68U, 69U, 70U, 71U}) writeHeaderByte(path, at, 0);
               },
               kForeign},
        Broken{"ACutFile", [](const fs::path& path) { fs::resize_file(path, fs::file_size(path) / 2); }, kDamaged},
        Broken{"HalfAHeader", [](const fs::path& path) { fs::resize_file(path, 50); }, kDamaged},
        Broken{"OverwrittenPages",
               [](const fs::path& path) {
                 const std::string bytes = test::readFile(path);
                 test::writeFile(path, bytes.substr(0, 4096) + std::string(bytes.size() - 4096, '\x55'));
               },
               kDamaged},
        Broken{"AFolder",
               [](const fs::path& path) {
                 fs::remove(path);
                 fs::create_directory(path);
               },
               kIrregular},
        Broken{"APipe",
               [](const fs::path& path) {
                 fs::remove(path);
                 ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
               },
               kIrregular}),
    [](const auto& row) { return row.param.name; });

TEST_F(DatabaseTrouble, AMissingFolderIsAnErrorAndIsNotMade) {
  const fs::path inNoFolder = folder / "missing" / "tracker.sqlite";

  EXPECT_EQ(errorOf([&] { Database{inNoFolder}; }),
            "the database " + inNoFolder.string() +
                " cannot be opened: check that its folder is there, and the permissions of both"
                " (unable to open database file)");
  EXPECT_FALSE(fs::exists(folder / "missing"));
}

TEST_F(DatabaseTrouble, NoNameIsAnError) {
  EXPECT_EQ(errorOf([] { Database{fs::path()}; }), "the database  has no name: give a path");
}

std::string lockedMessage(const fs::path& file) {
  return "the database " + file.string() +
         " is locked by another program: try again when it is done (database is locked)";
}

TEST_F(DatabaseTrouble, AWriterThatFindsItLockedSaysSoAndMayTryAgain) {
  Database holder(file);
  Database database(file, kImpatient);
  holder.run("BEGIN EXCLUSIVE");

  EXPECT_EQ(errorOf([&] { database.run("INSERT INTO used_day (day) VALUES (1)"); }), lockedMessage(file));
  EXPECT_EQ(errorOf([&] { const Database::Transaction transaction(database); }), lockedMessage(file));
  EXPECT_THAT(database.run("SELECT count(*) FROM used_day"), ElementsAre(ElementsAre(Value(0))));
  holder.run("ROLLBACK");

  database.run("INSERT INTO used_day (day) VALUES (1)");
  EXPECT_THAT(database.run("SELECT count(*) FROM used_day"), ElementsAre(ElementsAre(Value(1))));
}

TEST_F(DatabaseTrouble, AnOpenerThatFindsItLockedSaysSo) {
  Database holder(file);
  holder.run("PRAGMA journal_mode = DELETE");
  holder.run("BEGIN EXCLUSIVE");

  EXPECT_EQ(errorOf([&] { Database(file, kImpatient); }), lockedMessage(file));
}

TEST_F(DatabaseTrouble, AWritingThreadIsWaitedFor) {
  Database first(file);
  Database second(file, {.busyTimeout = std::chrono::hours(24 * 365)});
  Database third(file, {.busyTimeout = 0ms});

  std::jthread waiting;
  {
    Database::Transaction transaction(first);
    waiting = std::jthread([&] { second.run("INSERT INTO used_day (day) VALUES (2)"); });
    EXPECT_EQ(errorOf([&] { third.run("INSERT INTO used_day (day) VALUES (3)"); }), lockedMessage(file));
    transaction.run("INSERT INTO used_day (day) VALUES (1)");
    transaction.commit();
  }
  waiting.join();

  EXPECT_THAT(third.run("SELECT day FROM used_day"), ElementsAre(ElementsAre(Value(1)), ElementsAre(Value(2))));
}

TEST_F(DatabaseTrouble, ADiskThatFailsIsAnErrorAndWhatWasStoredStays) {
  makeDatabase();
  Database database(file);
  {
    const test::FileSizeLimit limit(1);
    EXPECT_EQ(errorOf([&] { database.run("INSERT INTO used_day (day) VALUES (1000)"); }),
              "the database " + file.string() + " cannot be read or written: check its disk (disk I/O error)");
  }

  database.run("INSERT INTO used_day (day) VALUES (2000)");

  EXPECT_THAT(database.run("SELECT count(*), max(day) FROM used_day"),
              ElementsAre(ElementsAre(Value(201), Value(2000))));
}

TEST_F(DatabaseTrouble, AFileThatCannotGrowIsAnErrorAndItsTransactionIsUndone) {
  makeDatabase();
  Database database(file);
  database.run("PRAGMA max_page_count = 1");
  const std::string huge(100000, 'x');

  EXPECT_EQ(errorOf([&] {
              Database::Transaction transaction(database);
              transaction.run("INSERT INTO used_day (day) VALUES (1000)");
              transaction.run("INSERT INTO tracker_event (network_id, event, count) VALUES (?1, 'e', 1)", {huge});
              transaction.commit();
            }),
            "the database " + file.string() + " cannot grow: free some space on its disk (database or disk is full)");

  EXPECT_THAT(database.run("SELECT max(day) FROM used_day"), ElementsAre(ElementsAre(Value(199))));
}

// Permissions do not hold the superuser back, so the test acts as somebody else.
class AsNobody {
 public:
  explicit AsNobody(const fs::path& folder) : superuser_(::geteuid() == 0) {
    if (!superuser_) return;
    for (const auto& entry : fs::directory_iterator(folder)) EXPECT_EQ(::chown(entry.path().c_str(), kNobody, 0), 0);
    EXPECT_EQ(::chown(folder.c_str(), kNobody, 0), 0);
    EXPECT_EQ(::seteuid(kNobody), 0);
  }
  AsNobody(const AsNobody&) = delete;
  AsNobody& operator=(const AsNobody&) = delete;
  ~AsNobody() {
    if (superuser_) {
      EXPECT_EQ(::seteuid(0), 0);
    }
  }

 private:
  static constexpr uid_t kNobody = 65534;
  const bool superuser_;
};

TEST_F(DatabaseTrouble, AReadOnlyFileIsAnError) {
  makeDatabase();
  const AsNobody nobody(folder.path());
  fs::permissions(file, fs::perms(0400));

  EXPECT_EQ(errorOf([&] { Database{file}; }), "the database " + file.string() +
                                                  " cannot be written: check the permissions of the file and its folder"
                                                  " (attempt to write a readonly database)");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0400));
}

TEST_F(DatabaseTrouble, AFileThatCannotBeReadIsAnError) {
  makeDatabase();
  const AsNobody nobody(folder.path());
  fs::permissions(file, fs::perms(0000));

  EXPECT_EQ(errorOf([&] { Database{file}; }),
            "the database " + file.string() +
                " cannot be opened: check that its folder is there, and the permissions of both"
                " (unable to open database file)");
}

TEST_F(DatabaseTrouble, AReadOnlyFolderIsAnError) {
  const AsNobody nobody(folder.path());
  fs::permissions(folder.path(), fs::perms(0500));

  EXPECT_THAT(errorOf([&] { Database{file}; }),
              testing::HasSubstr(" cannot be opened: check that its folder is there"));

  fs::permissions(folder.path(), fs::perms(0700));
}

TEST_F(DatabaseTrouble, DamageOfAnyKindIsAnErrorAtMost) {
  constexpr unsigned kSeed = 20261121;
  constexpr int kRounds = 300;
  std::cout << "seed " << kSeed << '\n';
  std::mt19937 random(kSeed);
  makeDatabase();
  const std::string sound = test::readFile(file);
  int errors = 0;

  for (int round = 0; round < kRounds; ++round) {
    std::string bytes = sound;
    for (int flips = 0; flips < 1 + round % 40; ++flips) bytes[random() % bytes.size()] = static_cast<char>(random());
    if (round % 5 == 0) bytes.resize(random() % bytes.size());
    for (const char* const companion : {"-wal", "-shm"}) fs::remove(file.string() + companion);
    test::writeFile(file, bytes);
    try {
      Database database(file, kImpatient);
      database.run("INSERT OR IGNORE INTO used_day (day) VALUES (?1)", {round});
      database.run("SELECT * FROM tracker_event");
      database.run("SELECT * FROM last_use");
      database.run("SELECT sum(day) FROM used_day");
      database.run("DELETE FROM used_day");
    } catch (const DatabaseError&) {
      ++errors;
    }
  }

  EXPECT_GT(errors, kRounds / 10);
  EXPECT_LT(errors, kRounds);
}

}  // namespace
}  // namespace tavlo::host
