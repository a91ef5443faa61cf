// The identifier store: three texts in the user settings of the host app.
#include "TavloUtility.h"
#include "common/Format.h"
#include "platform/Platform.h"

namespace tavlo {
namespace {

// The host app's own settings lie beside these; the names carry no prefix.
constexpr std::string_view kAppId = "ApplicationId";
constexpr std::string_view kOptionalId = "OptionalId";
constexpr std::string_view kSecurityKey = "SecurityKey";

void store(std::string_view key, const Text& value) {
  if (!value || value->empty()) return;
  const auto platform = platform::current();
  platform->standardUserDefaults().setObjectForKey(*value, key);
  // Its answer is not looked at: a change that could not be written stays pending for the next setter.
  static_cast<void>(platform->standardUserDefaults().synchronize());
}

Text stored(std::string_view key) {
  const auto value = platform::current()->standardUserDefaults().objectForKey(key);
  return value ? Text(textForm(*value)) : std::nullopt;
}

}  // namespace

void TavloUtility::setAppIdToUserDefault(const Text& value) { store(kAppId, value); }
void TavloUtility::setOptionalIdToUserDefault(const Text& value) { store(kOptionalId, value); }
void TavloUtility::setSecurityKeyToUserDefault(const Text& value) { store(kSecurityKey, value); }

Text TavloUtility::getAppIdFromUserDefault() { return stored(kAppId); }
Text TavloUtility::getOptionalIdFromUserDefault() { return stored(kOptionalId); }
Text TavloUtility::getSecurityKeyTFromUserDefault() { return stored(kSecurityKey); }

}  // namespace tavlo
