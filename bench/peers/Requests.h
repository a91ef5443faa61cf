// What the peers of the request builders share: a record of their own, and a walk over a contract's rows that reads
// each row's source once, as ours does, and gives it to a writer.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

#include "bench/peers/Peers.h"
#include "common/Format.h"
#include "request/Contracts.h"

namespace tavlo::bench::peers {

inline constexpr bool kFmt = TAVLO_PEER_FMT;

// The usual way to guard many values that are mostly read: one shared mutex, locked once a read.
class GuardedRecord {
 public:
  void copyFrom(const TavloPackage& package) {
    const std::unique_lock lock(mutex_);
    for (std::size_t i = 0; i < texts_.size(); ++i) texts_[i] = (package.*kPackageTextReads[i].read)();
    day_ = TavloUniqueUserHandler::getUniqueUserDay();
    const auto users = TavloUniqueUserHandler::installed();
    for (std::size_t i = 0; i < kCounters.size(); ++i) counters_[i] = ((*users).*kCounters[i])();
    integers_ = {package.limitAdTrackingEnabled() ? 1 : 0, package.resolution(), package.preRoll()};
  }
  [[nodiscard]] Text text(PackageText text) const {
    const std::shared_lock lock(mutex_);
    return texts_[static_cast<std::size_t>(text)];
  }
  [[nodiscard]] Text day() const {
    const std::shared_lock lock(mutex_);
    return day_;
  }
  [[nodiscard]] std::int32_t counter(const UserInteger& source) const {
    const auto place = std::find(kCounters.begin(), kCounters.end(), source.read) - kCounters.begin();
    const std::shared_lock lock(mutex_);
    return counters_[static_cast<std::size_t>(place)];
  }
  [[nodiscard]] bool flag() const { return integer(0) != 0; }
  [[nodiscard]] std::int32_t integer(const PackageInteger& source) const {
    return integer(source.read == &TavloPackage::resolution ? 1 : 2);
  }

 private:
  using Users = TavloUniqueUserHandler;
  static constexpr auto kCounters =
      std::to_array({&Users::isUserNew, &Users::uniqueUserDayValue, &Users::uniqueUserWeekValue, &Users::numberOfWeek,
                     &Users::uniqueUserMonthValue, &Users::numberOfMonth});

  [[nodiscard]] std::int32_t integer(std::size_t place) const {
    const std::shared_lock lock(mutex_);
    return integers_[place];
  }

  mutable std::shared_mutex mutex_;
  std::array<Text, kPackageTextReads.size()> texts_;
  std::array<std::int32_t, 3> integers_{};
  Text day_;
  std::array<std::int32_t, kCounters.size()> counters_{};
};

// What the peers read: the values of the session that is installed.
inline GuardedRecord& guardedRecord() {
  static GuardedRecord record;
  return record;
}

// Reads one row after the other and calls write(key, value), the value a text, an integer or a list. Encoded ones went
// through the encoder of Boost.URL. Identifiers are read by the operations that ours reads them by.
template <class Write>
class Walk {
 public:
  Walk(const Pair& row, const GuardedRecord& record, Write& write) : row_(row), record_(record), write_(write) {}

  void operator()(const Constant& source) const { write_(row_.key, source.text); }
  void operator()(PackageText source) const { writeText(record_.text(source)); }
  void operator()(const PackageFlag&) const { write_(row_.key, record_.flag() ? 1 : 0); }
  void operator()(const PackageInteger& source) const { write_(row_.key, record_.integer(source)); }
  void operator()(const TextOperation& source) const { writeText(source.call()); }
  void operator()(const UserText&) const { writeText(record_.day()); }
  void operator()(const UserInteger& source) const { write_(row_.key, record_.counter(source)); }
  void operator()(const ListOperation&) const { write_(row_.key, nullptr); }

 private:
  void writeText(Text text) const {
    if (!text) {
      write_(row_.key, kAbsent);
    } else if (row_.rendering == Rendering::encoded) {
      if constexpr (kBoostUrl) write_(row_.key, boostUrlEncode(*text));  // without it, no peer walks
    } else {
      write_(row_.key, *std::move(text));
    }
  }

  const Pair& row_;
  const GuardedRecord& record_;
  Write& write_;
};

template <class Write>
void walk(const Contract& contract, const GuardedRecord& record, Write write) {
  for (const Pair& row : contract.pairs) std::visit(Walk<Write>(row, record, write), row.source);
}

// For a row that is a list, the writer is given this.
template <class Value>
constexpr bool isList = std::is_null_pointer_v<std::decay_t<Value>>;

[[nodiscard]] std::string fmtQuery(const Contract& contract, const GuardedRecord& record);

}  // namespace tavlo::bench::peers
