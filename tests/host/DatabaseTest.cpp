#include <cmath>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "host/Database.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::host {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

class DatabaseTest : public testing::Test {
 protected:
  const test::TemporaryFolder folder;
  const fs::path file = folder / "tracker.sqlite";
};

constexpr const char* kInsertDay = "INSERT INTO used_day (day) VALUES (?1)";
constexpr const char* kDays = "SELECT day FROM used_day ORDER BY day";

TEST_F(DatabaseTest, ANewFileAndItsCompanionsAreForTheirOwnerAlone) {
  Database database(file);
  database.run(kInsertDay, {1});

  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder.path())) {
    names.push_back(entry.path().filename().string());
    EXPECT_EQ(entry.status().permissions(), fs::perms(0600)) << entry.path();
  }
  EXPECT_THAT(names, testing::UnorderedElementsAre("tracker.sqlite", "tracker.sqlite-shm", "tracker.sqlite-wal"));
}

TEST_F(DatabaseTest, AnEmptyFileBecomesADatabaseForItsOwnerAlone) {
  test::writeFile(file, "");
  fs::permissions(file, fs::perms(0644));

  Database(file).run(kInsertDay, {1});

  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));
  EXPECT_THAT(Database(file).run(kDays), ElementsAre(ElementsAre(Value(1))));
}

TEST_F(DatabaseTest, PermissionsOfAnExistingDatabaseStay) {
  Database(file).run(kInsertDay, {1});
  fs::permissions(file, fs::perms(0640));

  Database(file).run(kInsertDay, {2});

  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
}

TEST_F(DatabaseTest, FilesCarryTheirOwnerAndVersionAndAWriteAheadLog) {
  Database(file).run(kInsertDay, {1});

  const std::string header = test::readFile(file).substr(0, 100);
  EXPECT_EQ(header.substr(0, 16), std::string("SQLite format 3\0", 16));
  EXPECT_EQ(header.substr(18, 2), "\2\2");
  EXPECT_EQ(header.substr(60, 4), std::string("\0\0\0\1", 4));
  EXPECT_EQ(header.substr(68, 4), "Tavl");
}

TEST_F(DatabaseTest, CommitsReachTheDiskBeforeTheyReturn) {
  Database database(file);

  EXPECT_THAT(database.run("PRAGMA synchronous"), ElementsAre(ElementsAre(Value(2))));
  EXPECT_THAT(database.run("PRAGMA fullfsync"), ElementsAre(ElementsAre(Value(1))));
}

TEST_F(DatabaseTest, NamesThatMeanSomethingToSqlAreFilesLikeOthers) {
  const fs::path before = fs::current_path();
  fs::current_path(folder.path());

  Database(":memory:").run(kInsertDay, {1});

  fs::current_path(before);
  EXPECT_THAT(Database(folder / ":memory:").run(kDays), ElementsAre(ElementsAre(Value(1))));
}

struct Kept {
  const char* name;
  Value value;
};

class DatabaseKeeps : public DatabaseTest, public testing::WithParamInterface<Kept> {};

TEST_P(DatabaseKeeps, ItInItsOwnKind) {
  Database database(file);

  EXPECT_THAT(database.run("SELECT ?1", {GetParam().value}), ElementsAre(ElementsAre(GetParam().value)));
}

INSTANTIATE_TEST_SUITE_P(
    All, DatabaseKeeps,
    testing::Values(Kept{"Null", Value()}, Kept{"SmallestInteger", std::numeric_limits<std::int64_t>::min()},
                    Kept{"LargestInteger", std::numeric_limits<std::int64_t>::max()}, Kept{"WholeReal", 1.0},
                    Kept{"Real", 0.1}, Kept{"Infinity", -std::numeric_limits<double>::infinity()},
                    Kept{"TinyReal", std::numeric_limits<double>::denorm_min()}, Kept{"Text", "Grüße"},
                    Kept{"EmptyText", ""}, Kept{"TextOfDigits", "1"}, Kept{"TextWithAZeroByte", std::string("a\0b", 3)},
                    Kept{"TextThatIsNoUtf8", "\xff\xfe"}, Kept{"Data", Value::data(std::string("\0\1", 2))},
                    Kept{"EmptyData", Value::data("")}),
    [](const auto& row) { return row.param.name; });

struct Refused {
  const char* name;
  Value value;
  const char* why;
};

class DatabaseRefuses : public DatabaseTest, public testing::WithParamInterface<Refused> {};

TEST_P(DatabaseRefuses, WhatARowCannotHold) {
  Database database(file);

  try {
    database.run("SELECT ?1", {GetParam().value});
    FAIL() << "nothing was thrown";
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), GetParam().why);
  }
}

constexpr const char* kOtherKind = "a value that is neither a number nor a text nor data cannot be stored";

INSTANTIATE_TEST_SUITE_P(All, DatabaseRefuses,
                         testing::Values(Refused{"WideInteger", std::uint64_t{1} << 63U,
                                                 "an integer beyond 64 bits cannot be stored"},
                                         Refused{"NoNumber", std::nan(""), "a real that is no number cannot be stored"},
                                         Refused{"TruthValue", true, kOtherKind}, Refused{"Date", Date{1}, kOtherKind},
                                         Refused{"List", Value::list({}), kOtherKind}),
                         [](const auto& row) { return row.param.name; });

TEST_F(DatabaseTest, AStatementThatIsWrongIsAnError) {
  Database database(file);

  EXPECT_THROW(database.run("SELECT * FROM nowhere"), DatabaseError);
  EXPECT_THAT(database.run(kDays), IsEmpty());
}

TEST_F(DatabaseTest, ATransactionWithoutACommitLeavesNothing) {
  Database database(file);
  {
    Database::Transaction transaction(database);
    transaction.run(kInsertDay, {1});
    EXPECT_THAT(transaction.run(kDays), ElementsAre(ElementsAre(Value(1))));
  }

  EXPECT_THAT(database.run(kDays), IsEmpty());
}

TEST_F(DatabaseTest, ACommittedTransactionIsThereForOthers) {
  Database database(file);
  Database other(file);
  {
    Database::Transaction transaction(database);
    transaction.run(kInsertDay, {1});
    EXPECT_THAT(other.run(kDays), IsEmpty());
    transaction.commit();
  }

  EXPECT_THAT(other.run(kDays), ElementsAre(ElementsAre(Value(1))));
}

TEST_F(DatabaseTest, AFailedStatementDoesNotEndItsTransaction) {
  Database database(file);
  {
    Database::Transaction transaction(database);
    transaction.run(kInsertDay, {1});
    EXPECT_THROW(transaction.run(kInsertDay, {1}), DatabaseError);
    transaction.commit();
  }

  EXPECT_THAT(database.run(kDays), ElementsAre(ElementsAre(Value(1))));
}

TEST_F(DatabaseTest, ThreadsMayOpenANewFileAtOnce) {
  constexpr int kThreads = 16;
  std::vector<std::jthread> threads;

  for (int day = 0; day < kThreads; ++day) {
    threads.emplace_back([this, day] { EXPECT_NO_THROW(Database(file).run(kInsertDay, {day})); });
  }
  threads.clear();

  EXPECT_THAT(Database(file).run("SELECT count(*) FROM used_day"), ElementsAre(ElementsAre(Value(kThreads))));
}

TEST_F(DatabaseTest, ThreadsShareOneDatabase) {
  constexpr int kThreads = 8;
  constexpr int kEach = 20;
  Database database(file);
  std::vector<std::jthread> threads;

  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&database, thread] {
      for (int i = 0; i < kEach; ++i) {
        const int day = thread * kEach + i;
        {
          Database::Transaction transaction(database);
          transaction.run(kInsertDay, {day});
          transaction.commit();
        }
        EXPECT_EQ(database.run("SELECT day FROM used_day WHERE day = ?1", {day}).size(), 1U);
      }
    });
  }
  threads.clear();

  EXPECT_THAT(database.run("SELECT count(*) FROM used_day"), ElementsAre(ElementsAre(Value(kThreads * kEach))));
}

}  // namespace
}  // namespace tavlo::host
