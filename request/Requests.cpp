// The four operations that build what the SDK sends.
#include "TavloUtility.h"
#include "request/Contracts.h"
#include "request/Renderer.h"

namespace tavlo {

std::string TavloUtility::getAdditionalRequestingString(const void* /*ignored*/) {
  const auto package = TavloPackage::sharedInstance();
  return renderQuery(kAdRequestContract, package.get());
}

std::string TavloUtility::getInAppNotificationAdditionalRequest() {
  const auto package = TavloPackage::sharedInstance();
  return renderQuery(kInAppContract, package.get());
}

std::string TavloUtility::getUserInfoRequestString() { return renderQuery(kUserContract, nullptr); }

Value TavloUtility::trackerNetworkSessionData() {
  // Never destroyed: a thread may still build a payload when main is left.
  static const auto* const keys = new ValueList(keysOf(kTrackerContract));
  const auto package = TavloPackage::sharedInstance();
  return Value::map(renderMap(kTrackerContract, *keys, package.get()));
}

}  // namespace tavlo
