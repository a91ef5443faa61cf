#import "platform/apple/AppleBundles.h"

#include "common/Utf8.h"
#import "platform/apple/Bridge.h"
#import "platform/apple/DeviceFrameworks.h"

namespace tavlo::apple_platform {

Text AppleBundle::pathForResourceOfType(std::string_view name, std::string_view type) {
  return textOf([object() pathForResource:stringOf(name) ofType:stringOf(type)]);
}

Text AppleBundles::mainBundleResourcePath() { return textOf([[NSBundle mainBundle] resourcePath]); }

std::shared_ptr<platform::Bundle> AppleBundles::bundleWithPath(const Text& path) {
  NSBundle* const bundle = path && isUtf8(*path) ? [NSBundle bundleWithPath:stringOf(*path)] : nil;
  return bundle == nil ? nullptr : std::make_shared<AppleBundle>(bundle);
}

std::size_t AppleImage::width() const {
  UIImage* const image = image_.get();
  return static_cast<std::size_t>([image size].width * [image scale]);
}

std::size_t AppleImage::height() const {
  UIImage* const image = image_.get();
  return static_cast<std::size_t>([image size].height * [image scale]);
}

std::shared_ptr<const platform::Image> AppleImages::imageWithContentsOfFile(const Text& path) {
  const Class images = NSClassFromString(@"UIImage");
  UIImage* const image = path ? [images imageWithContentsOfFile:stringOf(*path)] : nil;
  return image == nil ? nullptr : std::make_shared<AppleImage>(image);
}

}  // namespace tavlo::apple_platform
