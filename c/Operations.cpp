// The 27 operations, and what makes bundles and images readable.
#include <memory>
#include <utility>

#include "TavloUtility.h"
#include "c/Boundary.h"
#include "c/tavlo.h"
#include "platform/Application.h"
#include "platform/Bundle.h"
#include "platform/Image.h"
#include "request/UrlEncode.h"

namespace tavlo::c {
namespace {

using BundlePointer = std::shared_ptr<platform::Bundle>;
using ImagePointer = std::shared_ptr<const platform::Image>;

const BundlePointer& bundleOf(const tavlo_bundle* handle) { return *reinterpret_cast<const BundlePointer*>(handle); }
const ImagePointer& imageOf(const tavlo_image* handle) { return *reinterpret_cast<const ImagePointer*>(handle); }

template <class Handle, class Shared>
Handle* shareOf(Shared shared) {
  return reinterpret_cast<Handle*>(new Shared(std::move(shared)));
}

// An operation whose result is shared; the handle is a share.
template <class Handle, class Operation>
tavlo_status givingShare(const char* function, Handle** result, const Operation& operation) noexcept {
  if (result) *result = nullptr;
  return guarded(function, [&] {
    require(static_cast<const void*>(result), "the result");
    auto shared = operation();
    if (shared) *result = shareOf<Handle>(std::move(shared));
  });
}

template <class Operation>
tavlo_status givingTruth(const char* function, bool* result, const Operation& operation) noexcept {
  if (result) *result = false;
  return guarded(function, [&] {
    require(result, "the result");
    *result = operation();
  });
}

class Window final : public platform::View {
 public:
  explicit Window(Text handle) : handle_(std::move(handle)) {}
  Text windowHandle() const override { return handle_; }

 private:
  const Text handle_;
};

class WindowController final : public platform::ViewController {
 public:
  explicit WindowController(Text handle) : window_(std::make_shared<Window>(std::move(handle))) {}
  std::shared_ptr<platform::View> view() override { return window_; }

 private:
  const std::shared_ptr<Window> window_;
};

void exportLog(tavlo_text window) {
  Text handle = textOf(window, "the window");
  if (!handle) return TavloUtility::getExportTavloSDKLog(nullptr);
  WindowController controller(std::move(handle));
  TavloUtility::getExportTavloSDKLog(&controller);
}

}  // namespace
}  // namespace tavlo::c

using tavlo::TavloUtility;
using tavlo::c::bundleOf;
using tavlo::c::BundlePointer;
using tavlo::c::exportLog;
using tavlo::c::givingShare;
using tavlo::c::givingText;
using tavlo::c::givingTruth;
using tavlo::c::givingValue;
using tavlo::c::guarded;
using tavlo::c::imageOf;
using tavlo::c::ImagePointer;
using tavlo::c::optionalValue;
using tavlo::c::require;
using tavlo::c::textOf;
using tavlo::c::viewOf;

tavlo_status tavlo_getAdditionalRequestingString(const void* ignored, tavlo_string* query) {
  return givingText(__func__, query, [=] { return TavloUtility::getAdditionalRequestingString(ignored); });
}
tavlo_status tavlo_trackerNetworkSessionData(tavlo_value** payload) {
  return givingValue(__func__, payload, [] { return TavloUtility::trackerNetworkSessionData(); });
}
tavlo_status tavlo_getInAppNotificationAdditionalRequest(tavlo_string* query) {
  return givingText(__func__, query, [] { return TavloUtility::getInAppNotificationAdditionalRequest(); });
}
tavlo_status tavlo_getUserInfoRequestString(tavlo_string* fragment) {
  return givingText(__func__, fragment, [] { return TavloUtility::getUserInfoRequestString(); });
}

tavlo_status tavlo_getDocumentDirectoryPath(tavlo_text fileName, tavlo_string* path) {
  return givingText(__func__, path,
                    [=] { return TavloUtility::getDocumentDirectoryPath(viewOf(fileName, "the file name")); });
}
tavlo_status tavlo_getCacheVideoDataPath(tavlo_text url, tavlo_string* path) {
  return givingText(__func__, path, [=] { return TavloUtility::getCacheVideoDataPath(textOf(url, "the URL")); });
}
tavlo_status tavlo_getCacheVideoPathOfSavedInDB(tavlo_text name, tavlo_string* path) {
  return givingText(__func__, path,
                    [=] { return TavloUtility::getCacheVideoPathOfSavedInDB(textOf(name, "the name")); });
}
tavlo_status tavlo_getCachedVideoList(bool isVideo, tavlo_value** list) {
  return givingValue(__func__, list, [=] { return TavloUtility::getCachedVideoList(isVideo); });
}
tavlo_status tavlo_deleteCachedVideo(tavlo_text path, bool* removed) {
  return givingTruth(__func__, removed, [=] { return TavloUtility::deleteCachedVideo(textOf(path, "the path")); });
}
tavlo_status tavlo_clearCache(void) {
  return guarded(__func__, [] { TavloUtility::clearCache(); });
}
tavlo_status tavlo_sortCacahedVideoDates(const tavlo_value* list, tavlo_value** sorted) {
  return givingValue(__func__, sorted, [=] { return TavloUtility::sortCacahedVideoDates(optionalValue(list)); });
}
tavlo_status tavlo_getCacheBannerImagePath(tavlo_text url, tavlo_string* path) {
  return givingText(__func__, path, [=] { return TavloUtility::getCacheBannerImagePath(textOf(url, "the URL")); });
}
tavlo_status tavlo_cachedBannerImage(tavlo_text url) {
  return guarded(__func__, [=] { TavloUtility::cachedBannerImage(textOf(url, "the URL")); });
}

tavlo_status tavlo_setAppIdToUserDefault(tavlo_text value) {
  return guarded(__func__, [=] { TavloUtility::setAppIdToUserDefault(textOf(value, "the value")); });
}
tavlo_status tavlo_setOptionalIdToUserDefault(tavlo_text value) {
  return guarded(__func__, [=] { TavloUtility::setOptionalIdToUserDefault(textOf(value, "the value")); });
}
tavlo_status tavlo_setSecurityKeyToUserDefault(tavlo_text value) {
  return guarded(__func__, [=] { TavloUtility::setSecurityKeyToUserDefault(textOf(value, "the value")); });
}
tavlo_status tavlo_getAppIdFromUserDefault(tavlo_string* value) {
  return givingText(__func__, value, [] { return TavloUtility::getAppIdFromUserDefault(); });
}
tavlo_status tavlo_getOptionalIdFromUserDefault(tavlo_string* value) {
  return givingText(__func__, value, [] { return TavloUtility::getOptionalIdFromUserDefault(); });
}
tavlo_status tavlo_getSecurityKeyTFromUserDefault(tavlo_string* value) {
  return givingText(__func__, value, [] { return TavloUtility::getSecurityKeyTFromUserDefault(); });
}

tavlo_status tavlo_fetchCurrentLocation(void) {
  return guarded(__func__, [] { TavloUtility::fetchCurrentLocation(); });
}

tavlo_status tavlo_frameworkBundle(tavlo_bundle** bundle) {
  return givingShare(__func__, bundle, [] { return TavloUtility::frameworkBundle(); });
}
tavlo_status tavlo_getVolumeImage(tavlo_image** image) {
  return givingShare(__func__, image, [] { return TavloUtility::getVolumeImage(); });
}
tavlo_status tavlo_getMuteImage(tavlo_image** image) {
  return givingShare(__func__, image, [] { return TavloUtility::getMuteImage(); });
}
tavlo_status tavlo_getExportTavloSDKLog(tavlo_text window) {
  return guarded(__func__, [=] { exportLog(window); });
}
tavlo_status tavlo_quillmixInstalledOnThisDevice(bool* installed) {
  return givingTruth(__func__, installed, [] { return TavloUtility::quillmixInstalledOnThisDevice(); });
}

tavlo_status tavlo_bundle_path(const tavlo_bundle* bundle, tavlo_text name, tavlo_text type, tavlo_string* path) {
  return givingText(__func__, path, [=] {
    require(bundle, "the bundle");
    return bundleOf(bundle)->pathForResourceOfType(viewOf(name, "the name"), viewOf(type, "the type"));
  });
}
bool tavlo_bundle_same(const tavlo_bundle* a, const tavlo_bundle* b) {
  return a && b ? bundleOf(a) == bundleOf(b) : a == b;
}
void tavlo_bundle_free(tavlo_bundle* bundle) { delete reinterpret_cast<BundlePointer*>(bundle); }

size_t tavlo_image_width(const tavlo_image* image) { return image ? imageOf(image)->width() : 0; }
size_t tavlo_image_height(const tavlo_image* image) { return image ? imageOf(image)->height() : 0; }
tavlo_text tavlo_image_pixels(const tavlo_image* image) {
  if (!image) return {.data = nullptr, .size = 0};
  const auto pixels = imageOf(image)->pixels();
  return {.data = reinterpret_cast<const char*>(pixels.data()), .size = pixels.size()};
}
void tavlo_image_free(tavlo_image* image) { delete reinterpret_cast<ImagePointer*>(image); }

tavlo_status tavlo_md5(const tavlo_value* value, tavlo_string* digest) {
  return givingText(__func__, digest, [=] { return TavloUtility::md5(optionalValue(value)); });
}
tavlo_status tavlo_getFileExtensionFromUrl(tavlo_text url, tavlo_string* extension) {
  return givingText(__func__, extension, [=] { return TavloUtility::getFileExtensionFromUrl(textOf(url, "the URL")); });
}
tavlo_status tavlo_url_encode(tavlo_text value, tavlo_string* encoded) {
  return givingText(__func__, encoded, [=] { return tavlo::urlEncode(textOf(value, "the value")); });
}
