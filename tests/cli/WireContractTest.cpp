#include <gtest/gtest.h>

#include "cli/Requests.h"
#include "cli/SessionFile.h"
#include "tests/support/Python.h"

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

TEST(WireContractTest, RandomSessionsGiveTheTextsOfASecondImplementation) {
  constexpr std::size_t kCount = 400;
  const std::string seed = "20261121";
  RecordProperty("seed", seed);
  SCOPED_TRACE("seed " + seed);

  const auto lines =
      tavlo::test::splitLines(tavlo::test::runOracle("wire_contract.py", {seed, std::to_string(kCount)}));

  ASSERT_EQ(lines.size(), kCount);
  for (const std::string& line : lines) {
    const auto fields = fieldsOf(line);
    ASSERT_EQ(fields.size(), 6U);
    const auto outside = std::make_shared<CollectingPlatform>();
    install(parseSession(fields[0], "session"), outside);
    EXPECT_EQ(requestText(kAdRequestContract), fields[1]) << fields[0];
    EXPECT_EQ(requestText(kInAppContract), fields[2]) << fields[0];
    EXPECT_EQ(requestText(kUserContract), fields[3]) << fields[0];
    EXPECT_EQ(requestText(kTrackerContract), fields[4]) << fields[0];
    EXPECT_EQ(outside->text, fields[5]) << fields[0];
    if (HasFailure()) break;
  }
}

TEST(WireContractTest, ExplainedPairsAddUpToTheRequest) {
  install(parseSession(R"({"package": {"page": "a&b", "token": ""}, "identifiers": {"ApplicationId": "x y"}})", "s"),
          std::make_shared<CollectingPlatform>());

  for (const Contract& contract : {kAdRequestContract, kInAppContract, kUserContract}) {
    std::string text;
    for (const ExplainedPair& explained : explainRequest(contract)) {
      if (contract.form == Form::appended || !text.empty()) text += '&';
      text += std::string(explained.pair->key) + '=' + *explained.sent.ifText();
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
