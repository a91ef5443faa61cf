// Stands in for the transfers where the library is built without HTTP.
#include "platform/linux/HttpTransfer.h"

namespace tavlo::linux_platform {

std::unique_ptr<HttpTransfer> makeHttpTransfer(const DownloadLimits&, const std::optional<std::filesystem::path>&,
                                               const std::string&) {
  return nullptr;
}

void prepareHttp() noexcept {}

}  // namespace tavlo::linux_platform
