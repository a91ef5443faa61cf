#include <barrier>
#include <cstddef>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "TavloUtility.h"
#include "bench/Areas.h"
#include "bench/BenchHost.h"
#include "bench/peers/Requests.h"
#include "host/SessionRecord.h"
#include "request/Contracts.h"
#include "request/UrlEncode.h"

namespace tavlo::bench {
namespace {

using peers::GuardedRecord;
using peers::guardedRecord;

std::string appendedQuery(const Contract& contract, const GuardedRecord& record) {
  std::string out;
  peers::walk(contract, record, [&](std::string_view key, const auto& value) {
    if constexpr (!peers::isList<decltype(value)>) {
      if (contract.form == Form::appended || !out.empty()) out += '&';
      out.append(key).append(1, '=');
      if constexpr (std::is_integral_v<std::decay_t<decltype(value)>>) {
        out += std::to_string(value);
      } else {
        out += value;
      }
    }
  });
  return out;
}

std::string streamedQuery(const Contract& contract, const GuardedRecord& record) {
  std::ostringstream out;
  const char* lead = contract.form == Form::appended ? "&" : "";
  peers::walk(contract, record, [&](std::string_view key, const auto& value) {
    if constexpr (!peers::isList<decltype(value)>) {
      out << lead << key << '=' << value;
      lead = "&";
    }
  });
  return std::move(out).str();
}

void setUpHost() {
  installHost();
  guardedRecord().copyFrom(*TavloPackage::sharedInstance());
}

// Values for which no text needs memory of its own: what is left is asked for by the builder.
void setUpShortValues() {
  installHost();
  auto session = std::make_shared<host::SessionRecord>();
  for (std::size_t i = 0; i < kPackageTextReads.size(); ++i)
    session->set(static_cast<PackageText>(i), "M\xC3\xBCller & co");
  TavloPackage::install(session);
  guardedRecord().copyFrom(*session);
}

// All values read once, and each encoded into one buffer that is large enough: nothing else.
std::string readAndEncoded(const Contract& contract) {
  static std::string buffer(8192, ' ');
  buffer.clear();
  const auto package = TavloPackage::sharedInstance();
  for (const Pair& row : contract.pairs) {
    if (const auto* source = std::get_if<PackageText>(&row.source)) {
      const Text text = (*package.*readOf(*source).read)();
      if (row.rendering == Rendering::encoded) {
        appendUrlEncoded(buffer, *text);
      } else {
        buffer += *text;
      }
    }
  }
  return {};
}

Race& addQuery(Races& races, const std::string& operation, const std::string& input, const Contract& contract,
               std::string (*ours)(), void (*setUp)(), double bar) {
  Race& race = races.add(operation, input).setUp(setUp).ours(ours);
  if constexpr (peers::kBoostUrl) {
    race.peer("Boost.URL and append", [&contract] { return appendedQuery(contract, guardedRecord()); });
    race.peer("Boost.URL and std::ostringstream", [&contract] { return streamedQuery(contract, guardedRecord()); });
    if constexpr (peers::kFmt) {
      race.peer("Boost.URL and {fmt}", [&contract] { return peers::fmtQuery(contract, guardedRecord()); });
    }
    race.atMost(bar);
  }
  return race;
}

std::string adRequest() { return TavloUtility::getAdditionalRequestingString(); }

void addQueries(Races& races) {
  for (const auto& [input, setUp] :
       {std::pair<const char*, void (*)()>{"values of 22 to 44 B", setUpHost}, {"values of 14 B", setUpShortValues}}) {
    addQuery(races, "ad request", input, kAdRequestContract, adRequest, setUp, 0.45)
        .limit("the values read and encoded", [] { return readAndEncoded(kAdRequestContract); })
        .atMost(1.5, "the values read and encoded");
  }
  addQuery(races, "in-app request", "values of 22 to 44 B", kInAppContract,
           TavloUtility::getInAppNotificationAdditionalRequest, setUpHost, 0.5)
      .limit("its two identifiers", [] {
        benchmark::DoNotOptimize(TavloUtility::getAppIdFromUserDefault());
        benchmark::DoNotOptimize(TavloUtility::getOptionalIdFromUserDefault());
      });
  addQuery(races, "unique-user fragment", "fixed counters", kUserContract, TavloUtility::getUserInfoRequestString,
           setUpHost, 0.5);
}

// Threads that are there already, all let go at once.
class Crew {
 public:
  Crew(std::ptrdiff_t size, const std::function<void()>& work) : start_(size + 1), end_(size + 1) {
    for (std::ptrdiff_t i = 0; i < size; ++i) {
      threads_.emplace_back([this, work](const std::stop_token& stop) {
        for (start_.arrive_and_wait(); !stop.stop_requested(); start_.arrive_and_wait()) {
          work();
          end_.arrive_and_wait();
        }
      });
    }
  }
  Crew(const Crew&) = delete;
  Crew& operator=(const Crew&) = delete;
  ~Crew() {
    for (std::jthread& thread : threads_) thread.request_stop();
    start_.arrive_and_wait();
  }

  void work() {
    start_.arrive_and_wait();
    end_.arrive_and_wait();
  }

 private:
  std::barrier<> start_;
  std::barrier<> end_;
  std::vector<std::jthread> threads_;
};

template <class Read>
auto readByAll(std::ptrdiff_t threads, Read read) {
  constexpr int kRounds = 100;
  // The threads are made by the first call, which is not timed.
  return [=, crew = std::shared_ptr<Crew>()]() mutable {
    if (!crew) {
      crew = std::make_shared<Crew>(threads, [=] {
        for (int round = 0; round < kRounds; ++round) {
          for (std::size_t i = 0; i < kPackageTextReads.size(); ++i) benchmark::DoNotOptimize(read(i));
        }
      });
    }
    crew->work();
  };
}

void addThreads(Races& races) {
  for (const auto& [threads, input] : {std::pair{2, "2 threads"}, {8, "8 threads"}}) {
    races.add("100 reads of all texts of one record by each thread", input)
        .setUp(setUpHost)
        .wallClock()
        .ours(readByAll(threads,
                        [](std::size_t i) {
                          static const auto package = TavloPackage::sharedInstance();
                          return (*package.*kPackageTextReads[i].read)();
                        }))
        .peer("std::shared_mutex",
              readByAll(threads, [](std::size_t i) { return guardedRecord().text(static_cast<PackageText>(i)); }));
  }
}

}  // namespace

void addRequests(Races& races) {
  addQueries(races);
  addThreads(races);
}

}  // namespace tavlo::bench
