#include <TavloUtility.h>
#include <TavloVersion.h>

#include <cstdio>

#include "common/Text.h"
#include "common/Value.h"
#include "platform/Platform.h"

static_assert(TAVLO_VERSION_AT_LEAST(0, 0, 1));
static_assert(OWN_COMMON_TEXT_H + OWN_COMMON_VALUE_H + OWN_PLATFORM_PLATFORM_H == 3);

int main() {
  int unused;  // the library's warnings are not the consumer's
  std::puts(tavlo::TavloUtility::md5(tavlo::Value("abc"))->c_str());
  std::puts(tavlo::TavloUtility::getUserInfoRequestString().c_str());

  // Without a platform every operation answers, and nothing is kept.
  tavlo::TavloUtility::setAppIdToUserDefault("app");
  std::puts(tavlo::TavloUtility::getAppIdFromUserDefault() ? "kept" : "not available");
  std::puts(tavlo::TavloUtility::getDocumentDirectoryPath("a.mp4") ? "a path" : "not available");
  std::puts(tavlo::TavloUtility::deleteCachedVideo("/a.mp4") ? "removed" : "not available");
}
