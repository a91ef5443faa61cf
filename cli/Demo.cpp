// demo: the component at work on the example session, each step with what it shows and a check.
#include <memory>
#include <string>
#include <utility>

#include "TavloUtility.h"
#include "cli/Commands.h"
#include "cli/DemoCache.h"
#include "cli/DemoReport.h"
#include "cli/DemoServices.h"
#include "cli/ExampleSession.h"
#include "cli/Json.h"
#include "cli/Place.h"
#include "cli/Requests.h"
#include "cli/SessionFile.h"
#include "cli/WorkFolder.h"

namespace tavlo::cli {
namespace {

// Keeps console lines, so that the demo can show them where they belong.
class CollectingPlatform final : public platform::Platform, public platform::Console {
 public:
  platform::Console& console() override { return *this; }
  void log(std::string_view message) override { lines_.emplace_back(message); }
  [[nodiscard]] std::vector<std::string> take() { return std::exchange(lines_, {}); }

 private:
  std::vector<std::string> lines_;
};

// The request put together from its explained pairs, which each were read and rendered alone.
std::string joined(const Contract& contract, const std::vector<ExplainedPair>& pairs) {
  if (contract.form == Form::map) {
    ValueMap map;
    for (const auto& [pair, raw, sent] : pairs) map.append(pair->key, sent);
    return toJson(Value::map(std::move(map)));
  }
  std::string text;
  for (const auto& [pair, raw, sent] : pairs) {
    if (contract.form == Form::appended || !text.empty()) text += '&';
    text.append(pair->key).append("=").append(*sent.ifText());
  }
  return text;
}

void showRequests(DemoReport& report) {
  const auto outside = std::make_shared<CollectingPlatform>();
  install(parseSession(kExampleSession, "examples/session.json"), outside);
  for (const Contract& contract : kContracts) {
    report.title(std::string(contract.title) + ": tavlo request " + std::string(contract.name));
    const auto pairs = explainRequest(contract);
    static_cast<void>(outside->take());  // shown below, for the request itself
    report.table(pairs);
    const std::string text = requestText(contract);
    for (const std::string& line : outside->take()) report.say("on the console: " + harmless(line));
    report.request(contract, text);
    report.say("");
    report.check("the request has its " + std::to_string(pairs.size()) + " pairs in order",
                 text == joined(contract, pairs));
  }
}

void showEmptySession(DemoReport& report) {
  report.title("An empty session: every key is sent, absent texts as (null)");
  install(parseSession("{}", "{}"), std::make_shared<CollectingPlatform>());
  report.check("the ad request has 737 characters", requestText(kAdRequestContract).size() == 737);
  report.check("the in-app request has 443 characters", requestText(kInAppContract).size() == 443);
}

void showIdentifiers(DemoReport& report, const Place& place) {
  report.title("Identifiers: stored, and read back as after a restart");
  platform::install(place.makePlatform());
  TavloUtility::setAppIdToUserDefault("com.example.kino");
  TavloUtility::setOptionalIdToUserDefault("Zoë & Co");
  TavloUtility::setSecurityKeyToUserDefault("s3cr3t/key==");
  report.say("stored in " + harmless(place.settingsFile().string()));

  platform::install(place.makePlatform());
  report.check("ApplicationId is com.example.kino", TavloUtility::getAppIdFromUserDefault() == "com.example.kino");
  report.check("OptionalId is Zoë & Co", TavloUtility::getOptionalIdFromUserDefault() == "Zoë & Co");
  report.check("SecurityKey came back whole", TavloUtility::getSecurityKeyTFromUserDefault() == "s3cr3t/key==");
  TavloUtility::setOptionalIdToUserDefault("");
  report.check("an empty OptionalId is ignored", TavloUtility::getOptionalIdFromUserDefault() == "Zoë & Co");
}

void showTexts(DemoReport& report) {
  constexpr const char* kUrl = "https://cdn.example.com/v/clip%2Emp4?session=1#t=10";
  report.title("The name of a cached file: the digest of its URL, and the extension of its path");
  report.say(kUrl);
  const Text digest = TavloUtility::md5(Value(kUrl));
  const Text extension = TavloUtility::getFileExtensionFromUrl(kUrl);
  report.check("the digest is 4828df395932d31dff786754697e84a9", digest == "4828df395932d31dff786754697e84a9");
  report.check("the extension is mp4", extension == "mp4");
}

// Console lines are told by the report, where it tells them.
Place quietly(Globals globals) {
  globals.quiet = true;
  return Place(globals);
}

}  // namespace

void execute(const Demo& /*command*/, const Run& run) {
  const WorkFolder temporary;
  Globals ofTheCache = run.globals;  // which is cleared, so it is never one that someone uses
  ofTheCache.domain = "tavlo-demo";
  ofTheCache.container = temporary.path();
  Globals globals = ofTheCache;
  if (run.globals.container) globals.container = run.globals.container;

  DemoReport report(run);
  showRequests(report);
  showEmptySession(report);
  showIdentifiers(report, Place(globals));
  showTexts(report);
  showCache(report, Place(ofTheCache));
  showPosition(report, quietly(ofTheCache));
  showImages(report, quietly(ofTheCache));
  platform::install(nullptr);
  report.finish();
}

}  // namespace tavlo::cli
