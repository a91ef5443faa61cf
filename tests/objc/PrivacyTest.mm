// The privacy manifest says what the tables of the wire contracts and the code say.
#include <gmock/gmock.h>

#include <filesystem>
#include <set>
#include <string>
#include <variant>

#include "common/Value.h"
#include "objc/PrivacyKinds.h"
#import "platform/apple/Bridge.h"
#include "request/Contracts.h"
#include "tests/objc/PoolTest.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

using testing::ElementsAre;

const std::filesystem::path kRoot = TAVLO_SOURCE_DIR;

struct NameOf {
  std::string operator()(const Constant&) const { return ""; }
  std::string operator()(PackageText text) const { return std::string(readOf(text).name); }
  template <class Source>
  std::string operator()(const Source& source) const {
    return std::string(source.name);
  }
};

std::set<std::string> sourcesOfTheContracts() {
  std::set<std::string> names;
  for (const Contract& contract : kContracts) {
    for (const Pair& pair : contract.pairs) names.insert(std::visit(NameOf(), pair.source));
  }
  names.erase("");
  return names;
}

class ObjCPrivacy : public PoolTest {
 protected:
  ObjCPrivacy() {
    NSString* const path = apple_platform::stringOf((kRoot / "objc/PrivacyInfo.xcprivacy").string());
    manifest_ = apple_platform::valueOf([NSDictionary dictionaryWithContentsOfFile:path]).value_or(Value());
  }

  [[nodiscard]] const Value& member(const char* name) const {
    static const Value none;
    const Value* const found = manifest_.ifMap() ? manifest_.ifMap()->find(name) : nullptr;
    return found ? *found : none;
  }

  Value manifest_;
};

TEST_F(ObjCPrivacy, EverySourceOfTheContractsHasAKindAndNothingElseHas) {
  std::set<std::string> named;
  for (const auto& [source, type] : objc::kPrivacyKinds) EXPECT_TRUE(named.emplace(source).second) << source;

  EXPECT_EQ(named, sourcesOfTheContracts());
}

TEST_F(ObjCPrivacy, TheManifestDeclaresTheKindsAllLinkedAndUsedForTracking) {
  std::set<std::string> kinds;
  for (const auto& [source, type] : objc::kPrivacyKinds) {
    if (!type.empty()) kinds.insert("NSPrivacyCollectedDataType" + std::string(type));
  }

  std::set<std::string> declared;
  ASSERT_TRUE(member("NSPrivacyCollectedDataTypes").ifList());
  for (const Value& each : *member("NSPrivacyCollectedDataTypes").ifList()) {
    const ValueMap& one = *each.ifMap();
    declared.emplace(*one.find("NSPrivacyCollectedDataType")->ifText());
    EXPECT_EQ(*one.find("NSPrivacyCollectedDataTypeLinked"), Value(true));
    EXPECT_EQ(*one.find("NSPrivacyCollectedDataTypeTracking"), Value(true));
    EXPECT_EQ(*one.find("NSPrivacyCollectedDataTypePurposes"),
              Value::list({Value("NSPrivacyCollectedDataTypePurposeThirdPartyAdvertising")}));
  }

  EXPECT_EQ(declared, kinds);
  EXPECT_EQ(kinds.size(), member("NSPrivacyCollectedDataTypes").ifList()->size());
  EXPECT_EQ(member("NSPrivacyTracking"), Value(true));
  EXPECT_EQ(member("NSPrivacyTrackingDomains"), Value::list({}));
}

TEST_F(ObjCPrivacy, TheManifestGivesAReasonForEachServiceThatNeedsOne) {
  const auto reason = [](const char* service, const char* why) {
    return Value::map({{Value("NSPrivacyAccessedAPIType"), Value(service)},
                       {Value("NSPrivacyAccessedAPITypeReasons"), Value::list({Value(why)})}});
  };

  EXPECT_EQ(member("NSPrivacyAccessedAPITypes"),
            Value::list({reason("NSPrivacyAccessedAPICategoryUserDefaults", "CA92.1"),
                         reason("NSPrivacyAccessedAPICategoryFileTimestamp", "C617.1")}));
}

// Of the services that need a reason, in what the device builds: settings, and what tells times of files.
TEST_F(ObjCPrivacy, TheCodeUsesTheseServicesAndNoOthers) {
  std::set<std::string> used;
  for (const char* const folder :
       {"objc", "platform/apple", "platform", "common", "request", "cache", "identity", "location", "resources"}) {
    for (const auto& entry : std::filesystem::directory_iterator(kRoot / folder)) {
      if (!entry.is_regular_file() || entry.path().extension() == ".xcprivacy") continue;
      const std::string code = readFile(entry.path());
      for (const char* const service :
           {"NSUserDefaults standardUserDefaults", " stat(", "lstat(", "fstat(", "NSFileModificationDate",
            "systemUptime", "mach_absolute_time", "statfs(", "volumeAvailableCapacity", "activeInputModes"}) {
        if (code.find(service) != std::string::npos) used.insert(service);
      }
    }
  }

  EXPECT_THAT(used, ElementsAre(" stat(", "NSUserDefaults standardUserDefaults", "lstat("));
}

}  // namespace
}  // namespace tavlo::test
