// Two components in one process: the program's own, and the one in the shared library. Each has its own collaborators.
//
// Usage: two_copies FOLDER    prints what each of them says, and where its files are
#include <TavloUtility.h>
#include <common/Logger.h>
#include <platform/linux/LinuxPlatform.h>
#include <request/TavloUniqueUserHandler.h>
#include <tavlo.h>

#include <cstdio>
#include <memory>
#include <string>

namespace {

class OwnLog final : public tavlo::Logger {
 public:
  void writeLine(std::string_view message) override { std::printf("own: %s\n", std::string(message).c_str()); }
};

void sharedLog(void*, tavlo_text message) {
  std::printf("shared: %.*s\n", static_cast<int>(message.size), message.data);
}

void sayBoth() {
  std::printf("own answers %s\n", tavlo::TavloUtility::getAppIdFromUserDefault().value_or("absent").c_str());
  tavlo_string id{};
  tavlo_getAppIdFromUserDefault(&id);
  std::printf("shared answers %s\n", id.data ? id.data : "absent");
  tavlo_string_free(&id);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::string folder = argv[1];
  tavlo::Logger::install(std::make_shared<OwnLog>());
  tavlo::Logger::printLog("one");
  tavlo_print_log(tavlo_text_of("nobody hears this"));
  tavlo_logger logger{};
  logger.size = sizeof logger;
  logger.printLog = sharedLog;
  tavlo_logger_install(&logger);
  tavlo::Logger::printLog("two");
  tavlo_print_log(tavlo_text_of("three"));
  tavlo::Logger::install(nullptr);
  tavlo_print_log(tavlo_text_of("four"));

  tavlo::platform::install(tavlo::linux_platform::make({.container = folder + "/own", .domain = "two"}));
  tavlo_platform platform{};
  const std::string shared = folder + "/shared";
  platform.size = sizeof platform;
  platform.container = tavlo_text_of(shared.c_str());
  platform.domain = tavlo_text_of("two");
  tavlo_platform_install(&platform);
  tavlo::TavloUtility::setAppIdToUserDefault("mine");
  sayBoth();
  tavlo_setAppIdToUserDefault(tavlo_text_of("theirs"));
  sayBoth();
}
