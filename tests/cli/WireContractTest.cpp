#include <gtest/gtest.h>

#include "cli/Requests.h"
#include "cli/SessionFile.h"
#include "tests/support/Python.h"
#include "tests/support/Scale.h"
#include "tests/support/Seed.h"

namespace tavlo::cli {
namespace {

using tavlo::test::fromHex;

class CollectingPlatform final : public platform::Platform, public platform::Console {
 public:
  platform::Console& console() override { return *this; }
  void log(std::string_view message) override { text += std::string(message) + "\n"; }

  std::string text;
};

std::vector<std::string> fieldsOf(const std::string& line) {
  std::vector<std::string> fields;
  std::size_t at = 0;
  for (std::size_t tab = 0; tab != std::string::npos; at = tab + 1) {
    tab = line.find('\t', at);
    fields.push_back(fromHex(line.substr(at, tab - at)));
  }
  return fields;
}

// Of one session, whose texts the second implementation gives too.
void expectTexts(const std::string& line) {
  const auto fields = fieldsOf(line);
  ASSERT_EQ(fields.size(), 6U);
  const auto outside = std::make_shared<CollectingPlatform>();
  install(parseSession(fields[0], "session"), outside);
  ASSERT_EQ(requestText(kAdRequestContract), fields[1]) << fields[0];
  ASSERT_EQ(requestText(kInAppContract), fields[2]) << fields[0];
  ASSERT_EQ(requestText(kUserContract), fields[3]) << fields[0];
  ASSERT_EQ(requestText(kTrackerContract), fields[4]) << fields[0];
  ASSERT_EQ(outside->text, fields[5]) << fields[0];
}

// In portions, so that the texts of one fit in memory.
TEST(WireContractTest, RandomSessionsGiveTheTextsOfASecondImplementation) {
  constexpr int kPortion = 400;
  const int portions = tavlo::test::figure(1, 250);

  for (int portion = 0; portion < portions; ++portion) {
    const std::string seed = std::to_string(tavlo::test::seed()) + "." + std::to_string(portion);
    const auto lines =
        tavlo::test::splitLines(tavlo::test::runOracle("wire_contract.py", {seed, std::to_string(kPortion)}));
    ASSERT_EQ(lines.size(), static_cast<std::size_t>(kPortion));
    for (const std::string& line : lines) ASSERT_NO_FATAL_FAILURE(expectTexts(line));
  }
  tavlo::test::reached("T14 wire contracts", std::to_string(portions * kPortion) + " packages, five texts each");
}

TEST(WireContractTest, ExplainedPairsAddUpToTheRequest) {
  install(parseSession(R"({"package": {"page": "a&b", "token": ""}, "identifiers": {"ApplicationId": "x y"}})", "s"),
          std::make_shared<CollectingPlatform>());

  for (const Contract& contract : {kAdRequestContract, kInAppContract, kUserContract}) {
    std::string text;
    for (const ExplainedPair& explained : explainRequest(contract)) {
      if (contract.form == Form::appended || !text.empty()) text += '&';
      text.append(explained.pair->key).append("=").append(*explained.sent.ifText());
    }
    EXPECT_EQ(text, requestText(contract));
  }
}

TEST(WireContractTest, SettingsOfASessionOutliveNothing) {
  install(parseSession(R"({"identifiers": {"OptionalId": "o"}})", "s"), std::make_shared<CollectingPlatform>());
  auto& settings = platform::current()->standardUserDefaults();

  settings.setObjectForKey("new", "OptionalId");

  EXPECT_EQ(settings.objectForKey("OptionalId"), Value("new"));
  EXPECT_EQ(settings.objectForKey("ApplicationId"), std::nullopt);
  EXPECT_FALSE(settings.synchronize());
}

}  // namespace
}  // namespace tavlo::cli
