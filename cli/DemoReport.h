// DemoReport: what the demo tells, as text for people or as one JSON object at the end.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/Commands.h"
#include "cli/Requests.h"
#include "platform/Image.h"

namespace tavlo::cli {

class DemoReport {
 public:
  explicit DemoReport(const Run& run) : run_(run) {}

  void say(const std::string& text);
  void title(const std::string& text) { say("\n== " + text); }
  void draw(const platform::Image& image);  // in colours, or in characters where there are none
  void table(const std::vector<ExplainedPair>& pairs);
  void request(const Contract& contract, const std::string& text);
  void check(const std::string& claim, bool holds);

  // Throws Failure when any check did not hold.
  void finish();

 private:
  const Run& run_;
  ValueMap requests_;
  ValueList checks_;
  std::size_t failed_ = 0;
};

}  // namespace tavlo::cli
