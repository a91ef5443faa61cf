#import "platform/apple/ApplePlatform.h"

#import "platform/apple/AppleApplication.h"
#import "platform/apple/AppleBundles.h"
#import "platform/apple/AppleFileManager.h"
#import "platform/apple/AppleLocation.h"
#import "platform/apple/AppleServices.h"

namespace tavlo::apple_platform {
namespace {

class ApplePlatform final : public platform::Platform {
 public:
  platform::UserDefaults& standardUserDefaults() override { return userDefaults_; }
  platform::Console& console() override { return console_; }
  platform::FileManager& fileManager() override { return fileManager_; }
  platform::BackgroundQueue& backgroundQueue() override { return queue_; }
  platform::UrlData& urlData() override { return urlData_; }
  platform::LocationServices& locationServices() override { return locationServices_; }
  platform::Bundles& bundles() override { return bundles_; }
  platform::Images& images() override { return images_; }
  platform::Application& sharedApplication() override { return application_; }
  std::shared_ptr<platform::Geocoder> makeGeocoder() override { return makeAppleGeocoder(); }

 private:
  AppleUserDefaults userDefaults_;
  AppleConsole console_;
  AppleFileManager fileManager_;
  AppleQueue queue_;
  AppleUrlData urlData_;
  AppleLocationServices locationServices_;
  AppleBundles bundles_;
  AppleImages images_;
  AppleApplication application_;
};

}  // namespace

std::shared_ptr<platform::Platform> make() { return std::make_shared<ApplePlatform>(); }

}  // namespace tavlo::apple_platform
