#include "tests/conformance/Operations.h"

#include <map>
#include <memory>
#include <stdexcept>

#include "TavloUtility.h"
#include "request/UrlEncode.h"
#include "tests/conformance/Given.h"
#include "tests/conformance/GivenPlatform.h"

namespace tavlo::conformance {
namespace {

using Argument = std::optional<Value>;
using Answer = std::optional<Value>;
using U = TavloUtility;

class Screen final : public platform::ViewController {
 public:
  std::shared_ptr<platform::View> view() override { return std::make_shared<platform::View>(); }
};

Text text(const Argument& argument) { return textOf(argument ? &*argument : nullptr); }
bool truth(const Argument& argument) { return truthOf(argument ? &*argument : nullptr, false); }
Answer answer(const Text& text) { return text ? Answer(*text) : std::nullopt; }

template <Text (*operation)(const Text&)>
Answer textOfText(const Argument& argument) {
  return answer(operation(text(argument)));
}

template <Text (*operation)()>
Answer textOfNothing(const Argument&) {
  return answer(operation());
}

template <void (*operation)(const Text&)>
Answer nothingOfText(const Argument& argument) {
  return operation(text(argument)), std::nullopt;
}

template <void (*operation)()>
Answer nothing(const Argument&) {
  return operation(), std::nullopt;
}

template <std::shared_ptr<const platform::Image> (*operation)()>
Answer image(const Argument&) {
  const auto image = std::dynamic_pointer_cast<const GivenImage>(operation());
  return image ? Answer(image->file()) : std::nullopt;
}

Answer bundle(const Argument&) {
  const auto bundle = std::dynamic_pointer_cast<GivenBundle>(U::frameworkBundle());
  return bundle ? Answer(bundle->path()) : std::nullopt;
}

Answer exported(const Argument& argument) {
  Screen screen;
  U::getExportTavloSDKLog(argument ? &screen : nullptr);
  return std::nullopt;
}

const std::map<std::string, Answer (*)(const Argument&), std::less<>> kOperations = {
    {"getAdditionalRequestingString",
     [](const Argument& a) { return Answer(U::getAdditionalRequestingString(a ? &*a : nullptr)); }},
    {"trackerNetworkSessionData", [](const Argument&) { return Answer(U::trackerNetworkSessionData()); }},
    {"getInAppNotificationAdditionalRequest",
     [](const Argument&) { return Answer(U::getInAppNotificationAdditionalRequest()); }},
    {"getUserInfoRequestString", [](const Argument&) { return Answer(U::getUserInfoRequestString()); }},
    {"urlEncode", textOfText<urlEncode>},
    {"getDocumentDirectoryPath",
     [](const Argument& a) { return answer(U::getDocumentDirectoryPath(text(a).value())); }},
    {"getCacheVideoDataPath", textOfText<U::getCacheVideoDataPath>},
    {"getCacheVideoPathOfSavedInDB", textOfText<U::getCacheVideoPathOfSavedInDB>},
    {"getCachedVideoList", [](const Argument& a) { return U::getCachedVideoList(truth(a)); }},
    {"deleteCachedVideo", [](const Argument& a) { return Answer(U::deleteCachedVideo(text(a))); }},
    {"clearCache", nothing<U::clearCache>},
    {"sortCacahedVideoDates", [](const Argument& a) { return U::sortCacahedVideoDates(a); }},
    {"getCacheBannerImagePath", textOfText<U::getCacheBannerImagePath>},
    {"cachedBannerImage", nothingOfText<U::cachedBannerImage>},
    {"setAppIdToUserDefault", nothingOfText<U::setAppIdToUserDefault>},
    {"setOptionalIdToUserDefault", nothingOfText<U::setOptionalIdToUserDefault>},
    {"setSecurityKeyToUserDefault", nothingOfText<U::setSecurityKeyToUserDefault>},
    {"getAppIdFromUserDefault", textOfNothing<U::getAppIdFromUserDefault>},
    {"getOptionalIdFromUserDefault", textOfNothing<U::getOptionalIdFromUserDefault>},
    {"getSecurityKeyTFromUserDefault", textOfNothing<U::getSecurityKeyTFromUserDefault>},
    {"fetchCurrentLocation", nothing<U::fetchCurrentLocation>},
    {"frameworkBundle", bundle},
    {"getVolumeImage", image<U::getVolumeImage>},
    {"getMuteImage", image<U::getMuteImage>},
    {"getExportTavloSDKLog", exported},
    {"quillmixInstalledOnThisDevice", [](const Argument&) { return Answer(U::quillmixInstalledOnThisDevice()); }},
    {"md5", [](const Argument& a) { return answer(U::md5(a)); }},
    {"getFileExtensionFromUrl", textOfText<U::getFileExtensionFromUrl>},
};

}  // namespace

std::optional<Value> call(const std::string& operation, const std::optional<Value>& argument) {
  const auto found = kOperations.find(operation);
  if (found == kOperations.end()) throw std::runtime_error("a step calls \"" + operation + "\", which is no operation");
  return found->second(argument);
}

}  // namespace tavlo::conformance
