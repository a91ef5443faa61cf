// Records as a server's list of videos has them: maps of eight fields, or of those under other names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "common/Value.h"

namespace tavlo::bench {

// Scattered over all 32 bits, and never twice the same for small numbers.
[[nodiscard]] constexpr std::uint32_t scattered(std::size_t number) {
  return static_cast<std::uint32_t>(number) * 2'654'435'761U;
}

[[nodiscard]] inline Value numberedText(const char* before, std::size_t number, const char* behind = "") {
  std::string digits = std::to_string(number);
  digits.insert(0, digits.size() < 6 ? 6 - digits.size() : 0, '0');
  return before + digits + behind;
}

// The keys are shared by all records, as they are when an archive was read.
[[nodiscard]] inline ValueList records(std::size_t count, bool withTextDates = false) {
  const Value id("id"), title("title"), url("url"), category("category"), duration("duration"), priority("priority"),
      seen("seen"), startDate("startdate");
  ValueList list;
  list.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const double seconds = 700'000'000 + (scattered(i) % 100'000'000);
    const Value date = withTextDates ? numberedText("2026-", scattered(i) % 1'000'000) : Value(Date{seconds});
    list.push_back(Value::map({{id, numberedText("clip-", i)},
                               {title, numberedText("Trailer ", i, " of the season")},
                               {url, numberedText("https://cdn.example/v/", i, ".mp4")},
                               {category, numberedText("category ", i % 8)},
                               {duration, i * 7 % 600},
                               {priority, i % 10},
                               {seen, i % 3 == 0},
                               {startDate, date}}));
  }
  return list;
}

}  // namespace tavlo::bench
