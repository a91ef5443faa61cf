#include <string>
#include <string_view>

#include "TavloUtility.h"
#include "common/Format.h"
#include "common/Logger.h"
#include "common/Path.h"
#include "common/Slot.h"
#include "platform/Platform.h"

namespace tavlo {
namespace {

using platform::Bundle;
using platform::Image;

constexpr std::string_view kLoading = "Loading framework budle once ...";
constexpr std::string_view kLoaded = "Loaded framework bundle .. with path ";
constexpr std::string_view kAlreadyLoaded = "Already Loaded framework bundle";
constexpr std::string_view kGettingImage = "Calling Get volume Image first time";  // both images, each time

constexpr std::string_view kBundleName = "TavloSDKResource.bundle";
constexpr std::string_view kImageType = "png";

// Empty until a bundle could be opened, and never again.
Slot<Bundle>& resourceBundle() { return processSlot<Bundle>(); }

// The last one that was loaded, whichever it is. It is no cache: nothing here reads it.
Slot<const Image>& closeImage() { return processSlot<const Image>(); }

void loadBundle() {
  Logger::printLog(kLoading);
  const auto platform = platform::current();
  platform::Bundles& bundles = platform->bundles();
  const Text path = appendedPathComponent(bundles.mainBundleResourcePath(), kBundleName);
  if (auto bundle = bundles.bundleWithPath(path)) resourceBundle().store(std::move(bundle));
  std::string line(kLoaded);
  appendText(line, path);
  Logger::printLog(line);
}

std::shared_ptr<const Image> soundImage(std::string_view name) {
  Logger::printLog(kGettingImage);
  const auto bundle = TavloUtility::frameworkBundle();
  const Text path = bundle ? bundle->pathForResourceOfType(name, kImageType) : std::nullopt;
  auto image = platform::current()->images().imageWithContentsOfFile(path);
  closeImage().store(image);
  return image;
}

}  // namespace

std::shared_ptr<Bundle> TavloUtility::frameworkBundle() {
  if (auto bundle = resourceBundle().load()) {
    Logger::printLog(kAlreadyLoaded);
    return bundle;
  }
  loadBundle();
  return resourceBundle().load();
}

std::shared_ptr<const Image> TavloUtility::getVolumeImage() { return soundImage("volume"); }
std::shared_ptr<const Image> TavloUtility::getMuteImage() { return soundImage("mute"); }

}  // namespace tavlo
