#include <fmt/compile.h>
#include <fmt/format.h>

#include <cstddef>
#include <iterator>

#include "bench/peers/Requests.h"

namespace tavlo::bench::peers {

std::string fmtQuery(const Contract& contract, const GuardedRecord& record) {
  fmt::memory_buffer out;
  walk(contract, record, [&](std::string_view key, const auto& value) {
    if constexpr (!isList<decltype(value)>) {
      const std::string_view lead = contract.form == Form::appended || out.size() > 0 ? "&" : "";
      fmt::format_to(std::back_inserter(out), FMT_COMPILE("{}{}={}"), lead, key, value);
    }
  });
  return fmt::to_string(out);
}

}  // namespace tavlo::bench::peers
