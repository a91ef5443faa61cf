// Stands in for the desktop's services where the library is built without them.
#include "platform/linux/DesktopPortal.h"

namespace tavlo::linux_platform {
namespace {

class NoMenu final : public PortalMenu {
 public:
  std::optional<std::string> awaitRefusal() override { return "the library is built without the desktop portal"; }
  void withdraw() noexcept override {}
};

}  // namespace

bool hasHandlerForScheme(const std::string&) { return false; }

bool isPortalThere() { return false; }

std::shared_ptr<PortalMenu> openInMenu(FileDescriptor, const std::string&, std::chrono::milliseconds,
                                       const MenuHandler&) {
  return std::make_shared<NoMenu>();
}

}  // namespace tavlo::linux_platform
