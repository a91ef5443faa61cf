#include "host/UniqueUserCounters.h"

#include <chrono>
#include <string>
#include <utility>

#include "common/IntValue.h"

namespace tavlo::host {
namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

// Days are counted from 1970-01-01. ?1 the day of use, ?2 its week's first day, ?3 and ?4 its month's first
// and last.
constexpr const char* kCount = R"(
INSERT OR REPLACE INTO last_use (id, day, is_new, day_value, week_value, month_value) VALUES (
  1,
  ?1,
  NOT EXISTS (SELECT 1 FROM used_day),
  NOT EXISTS (SELECT 1 FROM used_day WHERE day = ?1),
  NOT EXISTS (SELECT 1 FROM used_day WHERE day BETWEEN ?2 AND ?2 + 6),
  NOT EXISTS (SELECT 1 FROM used_day WHERE day BETWEEN ?3 AND ?4)
))";
constexpr const char* kRemember = "INSERT OR IGNORE INTO used_day (day) VALUES (?1)";
constexpr const char* kLastUse = "SELECT day, is_new, day_value, week_value, month_value FROM last_use";

Value numberOf(sys_days day) { return day.time_since_epoch().count(); }

sys_days mondayOf(sys_days day) { return day - days(static_cast<int>(std::chrono::weekday(day).iso_encoding()) - 1); }

std::int32_t dayOfYear(sys_days day) {
  const sys_days newYear = year_month_day(day).year() / std::chrono::January / 1;
  return static_cast<std::int32_t>((day - newYear).count()) + 1;
}

// A week belongs to the year of its Thursday.
std::int32_t isoWeek(sys_days day) { return (dayOfYear(mondayOf(day) + days(3)) - 1) / 7 + 1; }

}  // namespace

UniqueUserCounters::UniqueUserCounters(std::shared_ptr<Database> database, Clock clock)
    : database_(std::move(database)), clock_(std::move(clock)) {
  counters_.store(countersOf(database_->run(kLastUse)));
}

void UniqueUserCounters::recordUse() {
  const sys_days today = std::chrono::floor<days>(clock_());
  const year_month_day date(today);
  const sys_days monthBegin = date.year() / date.month() / 1;
  const sys_days monthEnd = date.year() / date.month() / std::chrono::last;

  Database::Transaction transaction(*database_);
  transaction.run(kCount, {numberOf(today), numberOf(mondayOf(today)), numberOf(monthBegin), numberOf(monthEnd)});
  transaction.run(kRemember, {numberOf(today)});
  auto counters = countersOf(transaction.run(kLastUse));
  transaction.commit();
  counters_.store(std::move(counters));  // the transaction still keeps a later use of another thread waiting
}

std::shared_ptr<const UniqueUserCounters::Counters> UniqueUserCounters::countersOf(const Database::Rows& lastUse) {
  if (lastUse.empty()) return std::make_shared<const Counters>();
  const Database::Row& row = lastUse.front();
  const sys_days day{days(intValue(row[0]))};
  return std::make_shared<const Counters>(Counters{
      .isUserNew = intValue(row[1]),
      .dayValue = intValue(row[2]),
      .day = std::to_string(dayOfYear(day)),
      .weekValue = intValue(row[3]),
      .week = isoWeek(day),
      .monthValue = intValue(row[4]),
      .month = static_cast<std::int32_t>(static_cast<unsigned>(year_month_day(day).month())),
  });
}

std::int32_t UniqueUserCounters::isUserNew() const { return counters_.load()->isUserNew; }
std::int32_t UniqueUserCounters::uniqueUserDayValue() const { return counters_.load()->dayValue; }
Text UniqueUserCounters::uniqueUserDay() const { return counters_.load()->day; }
std::int32_t UniqueUserCounters::uniqueUserWeekValue() const { return counters_.load()->weekValue; }
std::int32_t UniqueUserCounters::numberOfWeek() const { return counters_.load()->week; }
std::int32_t UniqueUserCounters::uniqueUserMonthValue() const { return counters_.load()->monthValue; }
std::int32_t UniqueUserCounters::numberOfMonth() const { return counters_.load()->month; }

}  // namespace tavlo::host
