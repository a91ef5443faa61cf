#include "platform/linux/DownloadLimits.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace tavlo::linux_platform {
namespace {

struct Row {
  const char* name;
  std::uint64_t value;  // a negative one becomes larger than every highest
  std::uint64_t lowest;
  std::uint64_t highest;
  const char* unit;
};

template <class Number>
constexpr std::uint64_t number(Number value) {
  return static_cast<std::uint64_t>(value);
}

constexpr std::uint64_t kDay = number(std::chrono::milliseconds(std::chrono::hours(24)).count());
constexpr std::uint64_t kLargestBody = std::min(std::uint64_t{1} << 40U, std::uint64_t{SIZE_MAX / 2});

}  // namespace

void check(const DownloadLimits& limits) {
  const auto rows = std::to_array<Row>({
      {"connect", number(limits.connect.count()), 1, kDay, " ms"},
      {"stall", number(limits.stall.count()), 1, kDay, " ms"},
      {"total", number(limits.total.count()), 1, kDay, " ms"},
      {"body", number(limits.body), 1, kLargestBody, " bytes"},
      {"responseHead", number(limits.responseHead), 1, std::uint64_t{64} << 20U, " bytes"},
      {"redirects", number(limits.redirects), 0, 100, ""},
      {"workers", number(limits.workers), 1, 64, ""},
  });
  for (const Row& row : rows) {
    if (row.value >= row.lowest && row.value <= row.highest) continue;
    throw std::invalid_argument("the download limit \"" + std::string(row.name) + "\" must be from " +
                                std::to_string(row.lowest) + " to " + std::to_string(row.highest) + row.unit);
  }
}

}  // namespace tavlo::linux_platform
