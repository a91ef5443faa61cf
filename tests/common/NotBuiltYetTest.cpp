// The operations whose rooms come later say so, and nothing else.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "TavloUtility.h"
#include "tests/support/CaseName.h"

namespace tavlo {
namespace {

struct Unbuilt {
  const char* name;
  void (*call)();
};

class NotBuiltYet : public testing::TestWithParam<Unbuilt> {};

TEST_P(NotBuiltYet, IsALogicErrorThatNamesTheOperation) {
  std::string message;

  try {
    GetParam().call();
  } catch (const std::logic_error& error) {
    message = error.what();
  }

  EXPECT_EQ(message, "TavloUtility::" + std::string(GetParam().name) + " is not built yet in this version");
}

INSTANTIATE_TEST_SUITE_P(
    Operations, NotBuiltYet,
    testing::Values(Unbuilt{"fetchCurrentLocation", [] { static_cast<void>(TavloUtility::fetchCurrentLocation()); }},
                    Unbuilt{"frameworkBundle", [] { static_cast<void>(TavloUtility::frameworkBundle()); }},
                    Unbuilt{"getVolumeImage", [] { static_cast<void>(TavloUtility::getVolumeImage()); }},
                    Unbuilt{"getMuteImage", [] { static_cast<void>(TavloUtility::getMuteImage()); }},
                    Unbuilt{"getExportTavloSDKLog",
                            [] { static_cast<void>(TavloUtility::getExportTavloSDKLog(nullptr)); }},
                    Unbuilt{"quillmixInstalledOnThisDevice",
                            [] { static_cast<void>(TavloUtility::quillmixInstalledOnThisDevice()); }}),
    test::kCaseName);

}  // namespace
}  // namespace tavlo
