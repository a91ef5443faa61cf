// CommandLine: what the arguments of the program ask for, as plain values.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "cli/Output.h"
#include "host/CachedLists.h"
#include "platform/Location.h"
#include "request/Contracts.h"

namespace tavlo::cli {

struct Globals {
  std::optional<std::string> container;
  std::string domain = "tavlo";
  bool quiet = false;
  bool json = false;
  Color color = Color::automatic;
};

struct Help {
  std::string text;  // what --help or --version prints
};

struct MakeRequest {
  const Contract* contract = nullptr;
  std::optional<std::string> session;  // a path, or "-"
  bool pretty = false;
};

enum class Identifier : std::uint8_t { app, optional, security };

struct GetIdentifier {
  Identifier identifier;
  bool reveal = false;
};
struct SetIdentifier {
  Identifier identifier;
  std::string value;
};
struct ShowIdentifiers {
  bool reveal = false;
};

enum class TextOperationName : std::uint8_t { md5, extension, encode };

struct TransformTexts {
  TextOperationName operation;
  std::vector<std::string> texts;  // none: the lines of standard input
};

enum class ContractFormat : std::uint8_t { table, json, markdown };

struct PrintContract {
  const Contract* contract = nullptr;  // nullptr: all of them
  std::optional<ContractFormat> format;
};

struct AddEvent {
  std::string networkID;
  std::string event;
  std::int64_t count = 1;
};
struct ListEvents {};
struct ClearEvents {};
struct RecordUse {};
struct Demo {};

enum class CacheLookUpName : std::uint8_t { path, video, saved, banner };

struct LookUpInCache {
  CacheLookUpName lookUp;
  std::string text;  // a name, or a URL
};
struct FetchBanners {
  std::vector<std::string> urls;
};
struct ExplainUrl {
  std::string url;
};
struct ListCacheEntries {};
struct PrintCachedList {
  host::CachedList list;
};
struct PutCachedList {
  host::CachedList list;
  std::string file;  // a path, or "-"
};
struct SortList {
  std::string file;  // a path, or "-"
};
struct DeleteCached {
  std::string path;
};
struct ClearCache {};

inline constexpr std::chrono::seconds kPatience{10};
inline constexpr std::chrono::seconds kPatienceToWait{60};  // for a person, too

// A service or a table, or neither.
struct GeocoderChoice {
  std::optional<std::string> service;  // its base URL
  std::optional<std::string> contact;  // an e-mail address that the service may write to
  std::optional<std::string> table;    // a file of places, "-" for standard input
};

struct Locate {
  std::optional<platform::Coordinate> fixed;
  GeocoderChoice geocoder;
  std::optional<std::string> save;  // a session file
  std::optional<std::string> desktopId;
  bool wait = false;
  bool why = false;
  std::chrono::seconds patience = kPatience;
};

enum class SoundImage : std::uint8_t { volume, mute };

struct ShowImage {
  SoundImage image = SoundImage::volume;
  std::optional<std::string> out;  // a file that is made, "-" for standard output
};

struct ShowLog {
  std::optional<std::size_t> last;  // lines; absent: all
  bool follow = false;
};
struct ExportLog {};
struct Examine {
  GeocoderChoice geocoder;
};

using Command = std::variant<Help, MakeRequest, GetIdentifier, SetIdentifier, ShowIdentifiers, TransformTexts,
                             PrintContract, AddEvent, ListEvents, ClearEvents, RecordUse, Demo, LookUpInCache,
                             FetchBanners, ExplainUrl, ListCacheEntries, PrintCachedList, PutCachedList, SortList,
                             DeleteCached, ClearCache, Locate, ShowImage, ShowLog, ExportLog, Examine>;

struct Invocation {
  Globals globals;
  Command command;
};

// `arguments` are those after the program's name. Throws UsageError.
[[nodiscard]] Invocation parseCommandLine(std::span<const std::string> arguments);

}  // namespace tavlo::cli
