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

constexpr std::string_view kDocuments = "Documents Directory: ";  // to the console
constexpr std::string_view kExported = "Log file is created";     // whether or not a menu appeared
constexpr std::string_view kFileManagerUrl = "File Manager://";   // no URL for a strict parser

// Keeps the controller of the latest export while its menu may be on screen.
Slot<platform::DocumentInteractionController>& doct() { return processSlot<platform::DocumentInteractionController>(); }

}  // namespace

void TavloUtility::getExportTavloSDKLog(platform::ViewController* viewController) {
  const auto platform = platform::current();
  platform::FileManager& files = platform->fileManager();
  const Text cache = appendedPathComponent(files.documentDirectory(), kCacheDirectoryName);
  const Text path = appendedPathComponent(cache, kLogFileName);
  std::string line(kDocuments);
  appendText(line, files.documentDirectoryUrl());
  platform->console().log(line);
  static_cast<void>(quillmixInstalledOnThisDevice());  // changes nothing, but is asked
  const Text url = fileUrl(path);
  if (!url) return;
  const auto controller = platform->sharedApplication().interactionControllerWithURL(*url);
  doct().store(controller);
  const auto view = viewController ? viewController->view() : nullptr;
  static_cast<void>(controller->presentOpenInMenuFromRect(platform::Rect(), view, true));
  Logger::printLog(kExported);
}

bool TavloUtility::quillmixInstalledOnThisDevice() {
  return platform::current()->sharedApplication().canOpenURL(kFileManagerUrl);
}

}  // namespace tavlo
