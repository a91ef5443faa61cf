// All operations at once, on 64 threads, while the host writes. Each answer is looked at where it comes: it is one
// that there can be, whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string_view>
#include <vector>

#include "host/CachedLists.h"
#include "tests/integration/AllOperationsWorld.h"
#include "tests/support/Scale.h"
#include "tests/support/Seed.h"
#include "tests/support/ThreadsAtOnce.h"

namespace tavlo::test {
namespace {

constexpr int kThreads = 64;

// What a thread has: chance of its own, and the world of all.
struct Caller {
  AllOperationsWorld& world;
  std::mt19937_64 chance;
  std::atomic<int>& downloads;
  std::atomic<int>& imagesSeen;
  std::atomic<int>& listsSeen;

  [[nodiscard]] unsigned number() { return static_cast<unsigned>(chance() % 1000); }
  [[nodiscard]] std::string name(const char* extension) { return std::to_string(chance() % 8) + extension; }
};

std::string decoded(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isEncoded = text[i] == '%' && i + 2 < text.size();
    out += isEncoded ? static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16)) : text[i];
    i += isEncoded ? 2 : 0;
  }
  return out;
}

bool isNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

bool isDegrees(std::string_view text) { return text.ends_with(".500000") && isNumber(text.substr(0, text.size() - 7)); }

bool isAddress(std::string_view text) {
  constexpr std::string_view kBefore = R"({"city":")";
  if (text.empty() || text == "{}") return true;
  return text.starts_with(kBefore) && text.ends_with("\"}") &&
         isWhole(text.substr(kBefore.size(), text.size() - kBefore.size() - 2));
}

// One that the host wrote, or a constant of the contract.
bool isKnown(std::string_view value) {
  return isWhole(value) || isNumber(value) || isDegrees(value) || isAddress(value) || value == "4.1.0";
}

// "&~" is within a value.
void expectQuery(const std::string& query, std::size_t pairs, std::ptrdiff_t ampersands) {
  std::size_t found = 0;
  for (std::size_t begin = 0; begin <= query.size(); ++found) {
    std::size_t end = query.find('&', begin);
    while (end < query.size() && query.substr(end, 2) == "&~") end = query.find('&', end + 1);
    end = std::min(end, query.size());
    const std::string pair = query.substr(begin, end - begin);
    const std::size_t equals = std::min(pair.find('='), pair.size());
    EXPECT_GT(equals, 0U) << query;
    EXPECT_TRUE(equals < pair.size() && isKnown(decoded(pair.substr(equals + 1)))) << pair;
    begin = end + 1;
  }
  EXPECT_EQ(found, pairs) << query;
  EXPECT_EQ(std::count(query.begin(), query.end(), '&'), ampersands) << query;
}

void expectWhole(const Text& identifier) {
  EXPECT_TRUE(identifier && isWhole(*identifier)) << identifier.value_or("-");
}

// 40 separators, and one in each of the 7 values that are written as they are.
void askForTheAdRequest(Caller&) { expectQuery(TavloUtility::getAdditionalRequestingString(), 41, 40 + 7); }
void askForTheInAppRequest(Caller&) { expectQuery(TavloUtility::getInAppNotificationAdditionalRequest(), 24, 23 + 10); }

void askForThePayload(Caller&) {
  const Value payload = TavloUtility::trackerNetworkSessionData();
  EXPECT_EQ(payload.ifMap()->size(), 35U);
  for (const auto& [key, value] : *payload.ifMap()) {
    if (const auto text = value.ifText()) {
      EXPECT_TRUE(isKnown(decoded(*text)) || isNumber(*text)) << *text;
    } else {
      EXPECT_EQ(value.ifList()->size(), 2U);
    }
  }
}

void askForTheUser(Caller&) {
  const std::string fragment = TavloUtility::getUserInfoRequestString();
  EXPECT_EQ(fragment, "&ru=1&ru_n=&uud=1&uud_n=320&uuw=1&uuw_n=47&uum=1&uum_n=11");
}

void askForAPath(Caller& caller) {
  const std::string name = caller.name("");
  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath(name), caller.world.cache + name);
}

const std::string kVideo = "http://h/v/a.mp4";
std::string videoName() { return TavloUtility::md5(Value(kVideo)).value() + ".mp4"; }

void lookForAVideo(Caller& caller) {
  const Text path = TavloUtility::getCacheVideoDataPath(kVideo);
  EXPECT_TRUE(!path || *path == caller.world.cache + videoName());
}
void lookForAStoredVideo(Caller& caller) {
  const Text path = TavloUtility::getCacheVideoPathOfSavedInDB(videoName());
  EXPECT_TRUE(!path || *path == caller.world.cache + videoName());
}
void deleteAVideo(Caller& caller) {
  static_cast<void>(TavloUtility::deleteCachedVideo(caller.world.cache + videoName()));
}

Value record(const char* id, const char* date) { return Value::map({{"id", id}, {"startdate", date}}); }
Value unsorted() { return Value::list({record("c", "3"), record("a", "1"), record("b", "2")}); }
Value sorted() { return Value::list({record("a", "1"), record("b", "2"), record("c", "3")}); }

void readAList(Caller& caller) {
  const auto list = TavloUtility::getCachedVideoList(caller.number() % 2 == 0);
  EXPECT_TRUE(!list || *list == unsorted());
  if (list) ++caller.listsSeen;
}
void sortAList(Caller&) { EXPECT_EQ(TavloUtility::sortCacahedVideoDates(unsorted()), sorted()); }

void clear(Caller&) { TavloUtility::clearCache(); }

void lookForAnImage(Caller& caller) {
  const Text path = TavloUtility::getCacheBannerImagePath("http://h/" + caller.name(".png"));
  const auto body = platform::current()->fileManager().dataWithContentsOfFile(path);
  EXPECT_TRUE(!body || isUnbroken(*body)) << *path;
  if (body) ++caller.imagesSeen;
}
void downloadAnImage(Caller& caller) {
  ++caller.downloads;
  TavloUtility::cachedBannerImage("http://h/" + caller.name(".png"));
}

void setTheAppId(Caller& caller) { TavloUtility::setAppIdToUserDefault(whole(caller.number())); }
void setTheOptionalId(Caller& caller) { TavloUtility::setOptionalIdToUserDefault(whole(caller.number())); }
void setTheSecurityKey(Caller& caller) { TavloUtility::setSecurityKeyToUserDefault(whole(caller.number())); }
void askForTheAppId(Caller&) { expectWhole(TavloUtility::getAppIdFromUserDefault()); }
void askForTheOptionalId(Caller&) { expectWhole(TavloUtility::getOptionalIdFromUserDefault()); }
void askForTheSecurityKey(Caller&) { expectWhole(TavloUtility::getSecurityKeyTFromUserDefault()); }

void fetchThePosition(Caller&) { TavloUtility::fetchCurrentLocation(); }

void askForTheBundle(Caller&) { EXPECT_NE(TavloUtility::frameworkBundle(), nullptr); }
void expectImage(const std::shared_ptr<const platform::Image>& image) {
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->pixels().size(), image->width() * image->height() * 4);
}
void askForTheVolumeImage(Caller&) { expectImage(TavloUtility::getVolumeImage()); }
void askForTheMuteImage(Caller&) { expectImage(TavloUtility::getMuteImage()); }
void exportTheLog(Caller&) { TavloUtility::getExportTavloSDKLog(nullptr); }
void askForTheFileManager(Caller&) { EXPECT_FALSE(TavloUtility::quillmixInstalledOnThisDevice()); }

void askForADigest(Caller&) { EXPECT_EQ(TavloUtility::md5(Value("abc")), "900150983cd24fb0d6963f7d28e17f72"); }
void askForAnExtension(Caller&) { EXPECT_EQ(TavloUtility::getFileExtensionFromUrl(kVideo), "mp4"); }

// How often it is called, beside the others. What waits for the disk is called less.
struct Operation {
  int weight;
  void (*call)(Caller&);
};
constexpr auto kOperations = std::to_array<Operation>({{20, askForTheAdRequest},
                                                       {20, askForTheInAppRequest},
                                                       {10, askForThePayload},
                                                       {20, askForTheUser},
                                                       {10, askForAPath},
                                                       {10, lookForAVideo},
                                                       {10, lookForAStoredVideo},
                                                       {2, deleteAVideo},
                                                       {10, readAList},
                                                       {10, sortAList},
                                                       {1, clear},
                                                       {10, lookForAnImage},
                                                       {3, downloadAnImage},
                                                       {1, setTheAppId},
                                                       {1, setTheOptionalId},
                                                       {1, setTheSecurityKey},
                                                       {10, askForTheAppId},
                                                       {10, askForTheOptionalId},
                                                       {10, askForTheSecurityKey},
                                                       {5, fetchThePosition},
                                                       {10, askForTheBundle},
                                                       {5, askForTheVolumeImage},
                                                       {5, askForTheMuteImage},
                                                       {3, exportTheLog},
                                                       {10, askForTheFileManager},
                                                       {10, askForADigest},
                                                       {10, askForAnExtension}});
static_assert(kOperations.size() == 27);

// What the host does meanwhile.
void writeValues(Caller& caller) {
  host::SessionRecord& session = caller.world.host().session();
  const unsigned number = caller.number();
  session.set(static_cast<PackageText>(number % kPackageTextReads.size()), whole(number));
  session.setLimitAdTrackingEnabled(number % 2 == 0);
  session.setResolution(static_cast<std::int32_t>(number));
  session.setPreRoll(static_cast<std::int32_t>(number));
}
void writeFiles(Caller& caller) {
  writeFile(caller.world.cache + videoName(), "video");
  host::writeCachedList(host::CachedList::video, unsorted());
  host::writeCachedList(host::CachedList::interstitial, unsorted());
}

std::vector<std::size_t> byWeight() {
  std::vector<std::size_t> numbers;
  for (std::size_t i = 0; i < kOperations.size(); ++i) {
    numbers.insert(numbers.end(), static_cast<std::size_t>(kOperations[i].weight), i);
  }
  return numbers;
}

TEST(AllOperationsThread, AnswerOnlyWhatThereCanBeAndTheLogLosesNoLine) {
  const int wanted = figure(10'000, 500'000);
  const std::uint64_t seeded = seed();
  const std::vector<std::size_t> numbers = byWeight();
  AllOperationsWorld world;
  std::array<std::atomic<int>, kOperations.size()> calls{};
  std::atomic<int> begun = 0, downloads = 0, imagesSeen = 0, listsSeen = 0;
  Caller first{world, std::mt19937_64(seeded), downloads, imagesSeen, listsSeen};
  for (std::size_t i = 0; i < kPackageTextReads.size(); ++i) {
    world.host().session().set(static_cast<PackageText>(i), whole(0));
  }
  for (const auto set : {setTheAppId, setTheOptionalId, setTheSecurityKey, writeFiles}) set(first);
  world.host().counters().recordUse();
  for (const char* const event : {"e", "f"}) world.host().tracker().addEvent("n", event);

  onThreadsAtOnce(kThreads, [&](int thread) {
    const auto of = static_cast<std::uint64_t>(thread);
    Caller caller{world, std::mt19937_64(seeded * kThreads + of), downloads, imagesSeen, listsSeen};
    for (int begins = begun++; begins < wanted; begins = begun++) {
      const auto at = static_cast<std::size_t>(begins);  // the first calls are one of each
      const std::size_t number = at < kOperations.size() ? at : numbers[caller.chance() % numbers.size()];
      kOperations[number].call(caller);
      ++calls[number];
      if (caller.chance() % 8 == 0) writeValues(caller);
      if (caller.chance() % 512 == 0) writeFiles(caller);
    }
  });
  world.geocoder().finish();
  world.log->waitForDownloads(downloads);

  int all = 0;
  for (const auto& each : calls) {
    EXPECT_GT(each, 0) << &each - calls.data();
    all += each;
  }
  EXPECT_EQ(all, wanted);
  const std::string log = readFile(world.cache + "TavloLogFile.txt");
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), world.log->lines());
  EXPECT_EQ(log.find("(lines dropped"), std::string::npos);
  world.restart();
  for (const auto ask : {askForTheAppId, askForTheOptionalId, askForTheSecurityKey}) ask(first);
  reached("T10", std::to_string(all) + " calls of 27 operations on 64 threads, " + std::to_string(downloads) +
                     " downloads, " + std::to_string(imagesSeen) + " images and " + std::to_string(listsSeen) +
                     " lists read whole");
}

}  // namespace
}  // namespace tavlo::test
