// The Linux platform's fetch of a URL: http and https, and files on this machine.
//
// Values   the text loses U+0009, U+000A and U+000D; what is left must be a whole URL (common/UrlGrammar.h) of one
//          of the three schemes, in any letter case. For http and https see HttpTransfer.h. A `file:` URL names a
//          regular file of this machine: no host or "localhost", and an absolute, percent-encoded path; query
//          and fragment do not count.
// Absent   every other text, a file that cannot be read whole or is larger than the body limit, and whatever
//          fails on the way. A folder, a pipe or a device is absent and never waited for.
// Threads  any thread, any time. Up to four connections are kept open for each worker, and reused.
// Throws   nothing: where there is no memory, data is absent.
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/UrlData.h"
#include "platform/linux/DownloadLimits.h"
#include "platform/linux/HttpTransfer.h"
#include "platform/linux/Syscalls.h"

namespace tavlo::linux_platform {

class LinuxUrlData final : public platform::UrlData {
 public:
  explicit LinuxUrlData(DownloadLimits limits, std::optional<std::filesystem::path> certificateAuthorities = {},
                        Syscalls& syscalls = Syscalls::real());

  std::optional<std::string> dataWithContentsOfUrl(std::string_view url) override;

  // Ends every fetch under way at once; later ones give nothing.
  void cancel();

 private:
  class Lease;

  [[nodiscard]] bool isCancelled();
  std::optional<std::string> fetchFile(std::string_view path);
  std::optional<std::string> fetchHttp(const std::string& url);

  const DownloadLimits limits_;
  const std::optional<std::filesystem::path> certificateAuthorities_;
  Syscalls& syscalls_;

  std::mutex mutex_;
  bool cancelled_ = false;
  std::vector<std::unique_ptr<HttpTransfer>> idle_;
  std::vector<HttpTransfer*> busy_;
};

}  // namespace tavlo::linux_platform
