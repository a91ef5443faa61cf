// An app for a test: the SDK's own classes in their slots, the platform over Foundation, an empty Documents directory
// in a home of its own.
#pragma once

#include <string>
#include <vector>

#include "TavloUtility.h"
#include "common/Logger.h"
#include "common/TavloException.h"
#include "objc/Collaborators.h"
#import "objc/TavloUtility.h"
#import "platform/apple/ApplePlatform.h"
#import "platform/apple/Bridge.h"
#include "request/DataBaseHandler.h"
#include "request/TavloPackage.h"
#include "request/TavloUniqueUserHandler.h"
#include "tests/objc/Calls.h"
#include "tests/objc/Home.h"
#include "tests/objc/PoolTest.h"
#import "tests/objc/SdkClasses.h"

namespace tavlo::test {

class AppTest : public PoolTest {
 protected:
  AppTest() {
    static_cast<void>([::TavloUtility class]);
    forgetSdk();
    std::filesystem::remove_all(documents());
    platform::install(apple_platform::make());
    objc::adoptCollaborators();
  }
  ~AppTest() override {
    tavlo::TavloPackage::install(nullptr);
    tavlo::TavloUniqueUserHandler::install(nullptr);
    tavlo::DataBaseHandler::install(nullptr);
    tavlo::Logger::install(nullptr);
    tavlo::TavloException::install(nullptr);
    platform::install(nullptr);
  }

  [[nodiscard]] static std::filesystem::path documents() { return home() / "Documents"; }
  [[nodiscard]] static std::filesystem::path cache() { return documents() / "TavloCache"; }

  // As the component's own texts, to compare with.
  [[nodiscard]] static Text text(NSString* string) { return apple_platform::textOf(string); }
  [[nodiscard]] static NSString* string(std::string_view text) { return apple_platform::stringOf(text); }
};

}  // namespace tavlo::test
