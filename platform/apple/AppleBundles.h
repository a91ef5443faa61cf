// Bundles by NSBundle, images by UIImage.
//
// Bundles are run here over GNUstep Base; images against a stand-in, as there is no UIKit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "platform/Bundle.h"
#include "platform/Image.h"
#import "platform/apple/Retained.h"

namespace tavlo::apple_platform {

class AppleBundle final : public platform::Bundle {
 public:
  explicit AppleBundle(NSBundle* bundle) : bundle_(bundle) {}

  [[nodiscard]] NSBundle* object() const { return static_cast<NSBundle*>(bundle_.get()); }
  [[nodiscard]] Text pathForResourceOfType(std::string_view name, std::string_view type) override;

 private:
  Retained bundle_;
};

class AppleBundles final : public platform::Bundles {
 public:
  [[nodiscard]] Text mainBundleResourcePath() override;
  [[nodiscard]] std::shared_ptr<platform::Bundle> bundleWithPath(const Text& path) override;
};

// The pixels stay with the UIImage: pixels() is empty. Width and height are in pixels.
class AppleImage final : public platform::Image {
 public:
  explicit AppleImage(id image) : image_(image) {}

  [[nodiscard]] id object() const { return image_.get(); }
  [[nodiscard]] std::size_t width() const override;
  [[nodiscard]] std::size_t height() const override;
  [[nodiscard]] std::span<const std::uint8_t> pixels() const override { return {}; }

 private:
  Retained image_;
};

class AppleImages final : public platform::Images {
 public:
  [[nodiscard]] std::shared_ptr<const platform::Image> imageWithContentsOfFile(const Text& path) override;
};

}  // namespace tavlo::apple_platform
