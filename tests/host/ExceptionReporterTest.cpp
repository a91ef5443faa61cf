#include <memory>
#include <string>
#include <vector>

#include "common/Logger.h"
#include "host/ExceptionReporter.h"

namespace tavlo::host {
namespace {

class LinesInMemory final : public Logger {
 public:
  void writeLine(std::string_view message) override { lines.emplace_back(message); }

  std::vector<std::string> lines;
};

TEST(ExceptionReporter, ReportsReachTheLogAsTheyCome) {
  const auto log = std::make_shared<LinesInMemory>();
  Logger::install(log);
  TavloException::install(std::make_shared<ExceptionReporter>());

  TavloException::tavloException("a reason");
  TavloException::tavloException("");
  Logger::install(nullptr);
  TavloException::tavloException("nobody hears this");

  EXPECT_THAT(log->lines, testing::ElementsAre("a reason", ""));
}

}  // namespace
}  // namespace tavlo::host
