#include "cli/ServiceCommandLine.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

#include "cli/Named.h"
#include "cli/ServiceHelpTexts.h"
#include "host/TableGeocoder.h"

namespace tavlo::cli {
namespace {

constexpr std::string_view kTable = "table:";

constexpr auto kImages = std::to_array<Named<SoundImage>>({{"volume", SoundImage::volume}, {"mute", SoundImage::mute}});

template <class Number>
bool readsWhole(std::string_view text, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

platform::Coordinate coordinateOf(const std::string& text) {
  const auto comma = std::min(text.find(','), text.size());
  const std::string_view latitude = std::string_view(text).substr(0, comma);
  const std::string_view longitude = std::string_view(text).substr(std::min(comma + 1, text.size()));
  platform::Coordinate coordinate;
  if (readsWhole(latitude, coordinate.latitude) && readsWhole(longitude, coordinate.longitude) &&
      host::TableGeocoder::isOnEarth(coordinate)) {
    return coordinate;
  }
  throw UsageError("LAT,LON \"" + text + "\" is no position: give degrees from -90 to 90, a comma, and degrees from " +
                   "-180 to 180, like 52.52,13.405");
}

std::int64_t integerOf(const char* name, const std::string& text, std::int64_t most) {
  std::int64_t number = 0;
  if (readsWhole(text, number) && number >= 1 && number <= most) return number;
  throw UsageError(std::string(name) + " \"" + text + "\" is no integer from 1 to " + std::to_string(most));
}

GeocoderChoice geocoderOf(const Given& given) {
  GeocoderChoice choice{.service = {}, .contact = given.text("--contact"), .table = {}};
  const auto text = given.text("--geocoder");
  if (!text) return choice;
  if (text->starts_with(kTable) && text->size() > kTable.size()) {
    choice.table = text->substr(kTable.size());
  } else if (text->starts_with("https://") || text->starts_with("http://")) {
    choice.service = *text;
  } else {
    throw UsageError("the geocoder \"" + *text + "\" is neither an http or https URL nor table:FILE");
  }
  return choice;
}

Command makeLocate(const Given& given) {
  constexpr std::int64_t kMostSeconds = 3600;
  Locate locate;
  locate.wait = given.has("--wait");
  locate.why = given.has("--why");
  locate.save = given.text("--save");
  if (locate.save && (locate.save->empty() || *locate.save == "-")) throw UsageError("--save takes the name of a file");
  if (const auto text = given.text("--fixed")) locate.fixed = coordinateOf(*text);
  locate.geocoder = geocoderOf(given);
  locate.desktopId = given.text("--desktop-id");
  if (locate.wait) locate.patience = kPatienceToWait;
  if (const auto text = given.text("--timeout")) {
    locate.patience = std::chrono::seconds(integerOf("SECONDS", *text, kMostSeconds));
  }
  return locate;
}

Command makeImage(const Given& given) {
  if (given.text("--out") == "") throw UsageError("--out takes the name of a file, or -");
  return ShowImage{.image = named(kImages, given.word, "the image").value, .out = given.text("--out")};
}

Command makeTail(const Given& given) {
  constexpr std::int64_t kMostLines = 1000000000;
  constexpr std::size_t kUsualLines = 10;
  ShowLog show{.last = kUsualLines, .follow = given.has("--follow")};
  if (const auto text = given.text("--lines")) {
    show.last = static_cast<std::size_t>(integerOf("COUNT", *text, kMostLines));
  }
  return show;
}

constexpr OptionRow kContact{"--contact", "EMAIL", "An address that the service's keepers may write to"};

constexpr auto kRows = std::to_array<ServiceCommandRow>({
    {.name = "locate",
     .description = help::kLocate,
     .footer = help::kLocateFooter,
     .options = {{{"--fixed", "LAT,LON", "A position in degrees in place of the device's"},
                  {"--geocoder", "URL|table:FILE", "A Nominatim-compatible service, or a table of places"},
                  kContact,
                  {"--desktop-id", "ID", "The program's name for the position service, --domain when not given"},
                  {"--wait", nullptr, "Ask for permission, and wait for a position"},
                  {"--why", nullptr, "How each step was decided, too"},
                  {"--save", "FILE", "Keep position and address in this session file"},
                  {"--timeout", "SECONDS", "To wait at most, 1 to 3600: 10 when not given, 60 with --wait"}}},
     .make = makeLocate},
    {.name = "image",
     .description = help::kImage,
     .footer = help::kImageFooter,
     .argument = {.name = "NAME", .description = "volume or mute", .choices = [] { return namesOf(kImages); }},
     .options = {{{"--out", "FILE", "Write the PNG file's bytes to a new file, - for standard output"}}},
     .make = makeImage},
    {.group = "log",
     .name = "show",
     .description = help::kLogShow,
     .footer = help::kLogShowFooter,
     .make = [](const Given& /*given*/) -> Command { return ShowLog{}; }},
    {.group = "log",
     .name = "tail",
     .description = help::kLogTail,
     .footer = help::kLogTailFooter,
     .options = {{{"--lines", "COUNT", "How many, 10 when not given"},
                  {"--follow", nullptr, "Go on with what is added, until Ctrl-C"}}},
     .make = makeTail},
    {.group = "log",
     .name = "export",
     .description = help::kLogExport,
     .footer = help::kLogExportFooter,
     .make = [](const Given& /*given*/) -> Command { return ExportLog{}; }},
    {.name = "doctor",
     .description = help::kDoctor,
     .footer = help::kDoctorFooter,
     .options = {{{"--geocoder", "URL|table:FILE", "Try this geocoder, too"}, kContact}},
     .make = [](const Given& given) -> Command { return Examine{.geocoder = geocoderOf(given)}; }},
});

}  // namespace

std::span<const ServiceCommandRow> serviceCommands() { return kRows; }

}  // namespace tavlo::cli
