// A program that writes until it is killed:
//
//   tavlo_killed_writer settings CONTAINER FIRST THREADS   the three identifiers in turn, to FIRST, FIRST + 1 ...
//   tavlo_killed_writer once CONTAINER KEY VALUE           one identifier, by its number
//   tavlo_killed_writer images CONTAINER FIRST             banner images, and now and then clears the cache
//
// Its lines are "ready", and then "started KEY NUMBER" before an identifier is set and "done KEY NUMBER" after that;
// or "written" and "cleared".
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "TavloUtility.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/integration/SealedBody.h"

namespace tavlo::test {
namespace {

void say(const std::string& line) {
  const std::string whole = line + "\n";
  if (::write(STDOUT_FILENO, whole.data(), whole.size()) < 0) ::_exit(1);
}

void set(std::size_t key, const std::string& value) {
  constexpr auto kSetters = std::to_array<void (*)(const Text&)>({TavloUtility::setAppIdToUserDefault,
                                                                  TavloUtility::setOptionalIdToUserDefault,
                                                                  TavloUtility::setSecurityKeyToUserDefault});
  const std::string what = " " + std::to_string(key) + " " + value;
  say("started" + what);
  kSetters.at(key)(value);
  say("done" + what);
}

[[noreturn]] void setForEver(std::size_t first, int threads) {
  std::atomic<std::size_t> next = first;
  const auto work = [&] {
    for (;;) {
      const std::size_t number = next++;
      set(number % 3, std::to_string(number));
    }
  };
  std::vector<std::thread> others;
  for (int i = 1; i < threads; ++i) others.emplace_back(work);
  work();
  std::abort();
}

// The real files; tasks run at once; every URL has a body of its own number.
class ImagePlatform final : public platform::Platform, platform::BackgroundQueue, platform::UrlData {
 public:
  ImagePlatform(std::shared_ptr<platform::Platform> real, std::size_t first) : real_(std::move(real)), number_(first) {}

  platform::FileManager& fileManager() override { return real_->fileManager(); }
  platform::BackgroundQueue& backgroundQueue() override { return *this; }
  platform::UrlData& urlData() override { return *this; }

 private:
  void dispatchAsync(std::function<void()> task) override { task(); }
  std::optional<std::string> dataWithContentsOfUrl(std::string_view) override {
    const std::size_t number = ++number_;
    return sealed(std::size_t{1024} << (number % 10), static_cast<char>('a' + number % 26));
  }

  const std::shared_ptr<platform::Platform> real_;
  std::size_t number_;
};

[[noreturn]] void writeImagesForEver(std::size_t first) {
  platform::install(std::make_shared<ImagePlatform>(platform::current(), first));
  for (std::size_t number = first;; ++number) {
    if (number % 8 == 0) {
      TavloUtility::clearCache();
      say("cleared");
    } else {
      TavloUtility::cachedBannerImage("http://h/" + std::to_string(number % 5) + ".png");
      say("written");
    }
  }
}

}  // namespace
}  // namespace tavlo::test

int main(int, char** words) {
  using namespace tavlo;
  const std::string work = words[1];
  platform::install(linux_platform::make({.container = words[2], .domain = "player", .quietConsole = true}));
  const std::size_t number = std::stoul(words[3]);
  test::say("ready");
  if (work == "settings") test::setForEver(number, std::stoi(words[4]));
  if (work == "images") test::writeImagesForEver(number);
  test::set(number, words[4]);
  ::_exit(0);
}
