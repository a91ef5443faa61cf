#include "tests/integration/OutOfMemoryOperations.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

#include "TavloUtility.h"

namespace tavlo::test {
namespace {

using World = OutOfMemoryWorld;
using Operation = OutOfMemoryOperation;

Value valueOf(const std::optional<Value>& value) { return value.value_or(Value()); }

const Text kVideo = "http://h/a.mp4";
const std::string kVideoName = "46a031da1eba2acf8ec285d177c677da.mp4";
const std::string kImageName = "9ef778804fd929ca71a038547aea542b";

void nothing(World&) {}

// An operation whose answer is a text, of which the Documents' place is left out.
template <class Get>
auto textOf(Get get) {
  return [get](World& world, Attempt& attempt) {
    const Text text = attempt(get);
    return text ? Value(world.shown(*text)) : Value();
  };
}

template <class Act>
auto done(Act act) {
  return [act](World& world, Attempt& attempt) {
    return Value(attempt([&] {
      act(world);
      return "done";
    }));
  };
}

Operation setter(const char* name, void (*set)(const Text&), const std::string& after) {
  return {.name = name,
          .prepare = [](World& world) { world.putSettings("old"); },
          .call = done([set, value = Text("new")](World&) { set(value); }),
          .answer = "done",
          .state = [](World& world) { return world.identifiers(); },
          .states = {"old old old clean", after}};
}

Operation getter(const char* name, Text (*get)()) {
  return {.name = name,
          .prepare = [](World& world) { world.putSettings("an identifier that is longer than a short text"); },
          .call = textOf(get),
          .answer = "an identifier that is longer than a short text"};
}

template <class T>
std::string slotState(const std::shared_ptr<T>& before) {
  const auto now = processSlot<T>().load();
  return now == before ? "older" : now ? "newer" : "empty";
}

Operation image(const char* name, std::shared_ptr<const platform::Image> (*get)()) {
  static std::shared_ptr<const platform::Image> older;
  return {.name = name,
          .prepare =
              [](World&) {
                processSlot<platform::Bundle>().store(nullptr);
                older = TavloUtility::getMuteImage();
              },
          .call =
              [get](World&, Attempt& attempt) {
                const auto image = attempt(get);
                return image ? Value(static_cast<std::int64_t>(image->pixels().size())) : Value();
              },
          .answer = 64 * 64 * 4,
          .state = [](World&) { return slotState(older); },
          .states = {"older", "newer"}};
}

std::vector<Operation> requests() {
  return {
      {"getAdditionalRequestingString", nothing,
       textOf([] { return Text(TavloUtility::getAdditionalRequestingString()); }), Value()},
      {"trackerNetworkSessionData", nothing,
       [](World&, Attempt& attempt) { return attempt([] { return TavloUtility::trackerNetworkSessionData(); }); },
       Value()},
      {"getInAppNotificationAdditionalRequest", nothing,
       textOf([] { return Text(TavloUtility::getInAppNotificationAdditionalRequest()); }), Value()},
      {"getUserInfoRequestString", nothing, textOf([] { return Text(TavloUtility::getUserInfoRequestString()); }),
       "&ru=0&ru_n=&uud=0&uud_n=(null)&uuw=0&uuw_n=0&uum=0&uum_n=0"},
  };
}

std::vector<Operation> lookUps() {
  const auto fill = [](World& world) { world.fillCache({kVideoName, kImageName, "saved"}); };
  return {
      {"getDocumentDirectoryPath",
       [](World& world) { std::filesystem::remove_all(world.cache()); },
       textOf([] { return TavloUtility::getDocumentDirectoryPath("a"); }),
       "DOCUMENTS/TavloCache/a",
       [](World& world) { return world.namesBelow(world.cache()); },
       {"no folder", ""}},
      {"getCacheVideoDataPath", fill, textOf([] { return TavloUtility::getCacheVideoDataPath(kVideo); }),
       "DOCUMENTS/TavloCache/" + kVideoName},
      {"getCacheVideoPathOfSavedInDB", fill,
       textOf([name = Text("saved")] { return TavloUtility::getCacheVideoPathOfSavedInDB(name); }),
       "DOCUMENTS/TavloCache/saved"},
      {"getCacheBannerImagePath", fill,
       textOf([url = Text("http://h/a.png")] { return TavloUtility::getCacheBannerImagePath(url); }),
       "DOCUMENTS/TavloCache/" + kImageName},
  };
}

std::vector<Operation> lists() {
  const auto fill = [](World& world) { world.fillCache({"a", "b"}); };
  const auto names = [](World& world) { return world.namesBelow(world.cache()); };
  const std::vector<std::string> emptied{"a b ", "a ", "b ", ""};
  const auto list = [](World&, Attempt& attempt) {
    return valueOf(attempt([] { return TavloUtility::getCachedVideoList(true); }));
  };
  const Value sorted = Value::list({Value::map({{"startdate", 1}}), Value::map({{"startdate", 2}})});
  return {
      {"getCachedVideoList",
       [](World& world) {
         world.fillCache({});
         writeFile(world.cache("/VideoListAPI"),
                   readFile(TAVLO_SOURCE_DIR "/tests/fixtures/archives/desktop_five_records.bin"));
       },
       list, Value()},
      {"getCachedVideoListThatIsMissing", fill, list, Value(), names, emptied},
      {"deleteCachedVideo",
       [](World& world) {
         world.fillCache({"a"});
         std::filesystem::create_directories(world.cache("/a-folder"));
         writeFile(world.cache("/a-folder/b"), "older");
       },
       [](World& world, Attempt& attempt) {
         return Value(
             attempt([path = Text(world.cache("/a-folder"))] { return TavloUtility::deleteCachedVideo(path); }));
       },
       true,
       names,
       {"a a-folder a-folder/b ", "a a-folder ", "a "}},
      {"clearCache", fill, done([](World&) { TavloUtility::clearCache(); }), "done", names, emptied},
      {"sortCacahedVideoDates", nothing,
       [given = std::optional(Value::list({sorted.ifList()->at(1), sorted.ifList()->at(0)}))](World&,
                                                                                              Attempt& attempt) {
         return valueOf(attempt([&] { return TavloUtility::sortCacahedVideoDates(given); }));
       },
       sorted},
  };
}

Operation banner() {
  static const TemporaryFolder origin;
  static const std::string url = "file://" + (origin / "image").string();
  static const std::string name = TavloUtility::md5(Value(url)).value_or("");
  return {.name = "cachedBannerImage",
          .prepare =
              [](World& world) {
                writeFile(origin / "image", "newer");
                world.fillCache({name});
              },
          .call = done([given = Text(url)](World&) { TavloUtility::cachedBannerImage(given); }),
          .answer = "done",
          .state =
              [](World& world) {
                world.waitForWorker();
                return readFile(world.cache("/" + name)) + " " + world.temporaries();
              },
          .states = {"older clean", "newer clean"}};
}

// The slot of managers has the one before or a new one, whose services are those of a position that is known.
std::vector<Operation> location() {
  static std::shared_ptr<platform::LocationManager> older;
  const auto prepare = [](World& world) {
    older = host::FixedPosition({}).makeLocationManager();
    locationManager().store(older);
    world.host().session().setLatitudeAndLogitude("0", "0");
    world.host().session().setUserAddress("an address");
  };
  const auto position = [](World& world) { return world.position(); };
  const std::string found = "52.520000 13.405000 ";
  return {
      {"fetchCurrentLocation",
       prepare,
       done([](World&) { TavloUtility::fetchCurrentLocation(); }),
       "done",
       [position](World& world) { return slotState(older) + " " + position(world); },
       {"older 0 0 'an address'", "newer 0 0 'an address'", "newer 52.520000 0 'an address'",
        "newer " + found + "'an address'", "newer " + found + "''"}},
      {"fetchCurrentLocationOnceItIsAnswered",
       [prepare](World& world) {
         prepare(world);
         TavloUtility::fetchCurrentLocation();
       },
       done([places = std::optional(platform::Placemarks{{.country = "A country of a longer name"}})](World& world) {
         world.geocoder().answer(places, std::nullopt);
       }),
       "done",
       position,
       {found + "''", found + R"('{"country":"A country of a longer name"}')"}},
  };
}

std::vector<Operation> resources() {
  static std::shared_ptr<platform::DocumentInteractionController> older;
  return {
      {"frameworkBundle",
       [](World&) { processSlot<platform::Bundle>().store(nullptr); },
       [](World&, Attempt& attempt) { return Value(attempt(TavloUtility::frameworkBundle) != nullptr); },
       true,
       [](World&) { return std::string(processSlot<platform::Bundle>().load() ? "loaded" : "empty"); },
       {"empty", "loaded"}},
      image("getVolumeImage", TavloUtility::getVolumeImage),
      image("getMuteImage", TavloUtility::getMuteImage),
      {"getExportTavloSDKLog",
       [](World& world) {
         older = world.platform().sharedApplication().interactionControllerWithURL("file:///older");
         processSlot<platform::DocumentInteractionController>().store(older);
       },
       done([](World&) { TavloUtility::getExportTavloSDKLog(nullptr); }),
       "done",
       [](World&) { return slotState(older); },
       {"older", "newer"}},
      {"quillmixInstalledOnThisDevice", nothing,
       [](World&, Attempt& attempt) { return Value(attempt(TavloUtility::quillmixInstalledOnThisDevice)); }, false},
      {"md5", nothing, textOf([text = std::optional(Value("a"))] { return TavloUtility::md5(text); }),
       "0cc175b9c0f1b6a831c399e269772661"},
      {"md5OfAValueThatIsNoText", nothing,
       textOf([number = std::optional(Value(1))] { return TavloUtility::md5(number); }), Value()},
      {"getFileExtensionFromUrl", nothing, textOf([] { return TavloUtility::getFileExtensionFromUrl(kVideo); }), "mp4"},
  };
}

}  // namespace

std::vector<OutOfMemoryOperation> outOfMemoryOperations() {
  std::vector<Operation> all{
      banner(),
      setter("setAppIdToUserDefault", TavloUtility::setAppIdToUserDefault, "new old old clean"),
      setter("setOptionalIdToUserDefault", TavloUtility::setOptionalIdToUserDefault, "old new old clean"),
      setter("setSecurityKeyToUserDefault", TavloUtility::setSecurityKeyToUserDefault, "old old new clean"),
      getter("getAppIdFromUserDefault", TavloUtility::getAppIdFromUserDefault),
      getter("getOptionalIdFromUserDefault", TavloUtility::getOptionalIdFromUserDefault),
      getter("getSecurityKeyTFromUserDefault", TavloUtility::getSecurityKeyTFromUserDefault),
  };
  for (auto&& more : {requests(), lookUps(), lists(), location(), resources()}) {
    all.insert(all.end(), more.begin(), more.end());
  }
  return all;
}

}  // namespace tavlo::test
