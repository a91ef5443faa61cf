#include "cli/DemoCache.h"

#include <array>
#include <span>
#include <string_view>

#include "TavloUtility.h"
#include "cache/CacheDirectory.h"
#include "cli/ArchiveJson.h"
#include "cli/CacheEntries.h"
#include "cli/CacheSession.h"
#include "cli/Downloads.h"
#include "cli/LoopbackServer.h"
#include "host/CachedLists.h"

namespace tavlo::cli {
namespace {

using namespace std::string_view_literals;

constexpr bool kHasHttp = TAVLO_LINUX_HTTP;

struct Image {
  const char* path;
  const char* kind;
  std::string_view bytes;
};

// One pixel each.
constexpr auto kImages = std::to_array<Image>({
    {"/banner.png", "PNG image",
     "\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\1\0\0\0\1\b\2\0\0\0\x90\x77\x53\xDE\0\0\0\fIDAT\x78\xDA\x63\xF8\xDF\xC0\0"
     "\0\4\1\1\x80\xFB\xD7\xCB\xF1\0\0\0\0IEND\xAE\x42\x60\x82"sv},
    {"/banner.gif?size=1", "GIF image",
     "GIF89a\1\0\1\0\x80\0\0\xFF\x80\0\xFF\xFF\xFF,\0\0\0\0\1\0\1\0\0\2\2\x44\1\0;"sv},
    {"/banner.bmp", "BMP image",
     "BM:\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\1\0\0\0\1\0\0\0\1\0\x18\0\0\0\0\0\4\0\0\0\x13\v\0\0\x13\v\0\0\0\0\0\0\0"
     "\0\0\0\0\x80\xFF\0"sv},
});

LoopbackServer::Pages pagesOf(std::span<const Image> images) {
  LoopbackServer::Pages pages;
  for (const Image& image : images) pages.emplace(image.path, image.bytes);
  return pages;
}

std::string nameOf(const Text& path) { return path ? path->substr(path->rfind('/') + 1) : "(null)"; }

Text storedBytes(const Text& path) { return platform::current()->fileManager().dataWithContentsOfFile(path); }

void showDownloads(DemoReport& report, Downloads& downloads) {
  const LoopbackServer server(pagesOf(kImages));
  std::vector<std::string> urls;
  urls.reserve(kImages.size() + 2);
  for (const Image& image : kImages) urls.push_back(server.url(image.path));
  urls.push_back(server.url("/no-such-image"));
  urls.push_back(urls.front() + "\n");
  downloads.start(urls);
  constexpr int kNothingElse = -1;  // there is nothing besides the downloads to wait for
  static_cast<void>(downloads.wait(kNothingElse, [](const DownloadCounts&) {}));

  const std::vector<Download> done = downloads.all();
  for (std::size_t i = 0; i < kImages.size(); ++i) {
    const Text path = TavloUtility::getCacheBannerImagePath(urls[i]);
    report.say(std::string(kImages[i].path) + " is " + nameOf(path));
    report.check("the " + std::string(kImages[i].kind) + " is found, byte for byte",
                 done[i].isStored && storedBytes(path) == kImages[i].bytes);
  }
  report.check("what the server does not have is not stored",
               !done[3].isStored && done[3].lines == std::vector<std::string>{"getAndSaveBannerImage(): Passed data is "
                                                                              "empty"});
  report.check("a URL with a newline is stored under one name and looked up under another",
               done[4].isStored && done[4].path != TavloUtility::getCacheBannerImagePath(urls[4]));
}

void showLists(DemoReport& report) {
  const auto record = [](const char* title, double start) {
    return Value::map({{"title", title}, {"startdate", Date{.seconds = start}}});
  };
  const Value list = Value::list({record("third", 30), record("first", 10), record("second", 20)});
  try {
    host::writeCachedList(host::CachedList::video, list);
  } catch (const host::CachedListError& error) {
    report.say(harmless(error.what()));
  }
  const auto stored = TavloUtility::getCachedVideoList(true);
  report.check("the video list is read as it was written", stored == list);
  const auto sorted = TavloUtility::sortCacahedVideoDates(stored);
  if (sorted) report.say(toArchiveJson(sorted, ArchiveLayout::oneLine));
  report.check("its records are sorted by their start dates",
               sorted == Value::list({record("first", 10), record("second", 20), record("third", 30)}));
}

void showClearing(DemoReport& report, const Place& place) {
  TavloUtility::clearCache();
  const auto left = cacheEntries(cacheFolder(place));
  report.check("clearing leaves the log file alone", left && left->size() == 1 && left->front().name == kLogFileName);
  if (!kHasHttp) return;
  const Text log = storedBytes((cacheFolder(place) / kLogFileName).string());
  report.check("the log has what was stored before",
               log && log->find(" getAndSaveBannerImage() - write successfully\n") != std::string::npos);
}

}  // namespace

void showCache(DemoReport& report, const Place& place) {
  report.title("The media cache: images from a server on this machine, a list, clearing");
  Downloads downloads(place.makePlatform(), cacheFolder(place).parent_path().string());
  if (kHasHttp) {
    showDownloads(report, downloads);
  } else {
    report.say("This program was built without libcurl, so no image is downloaded.");
  }
  showLists(report);
  showClearing(report, place);
}

}  // namespace tavlo::cli
