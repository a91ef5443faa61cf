#include "cli/ContentKind.h"

#include <algorithm>
#include <array>
#include <string>

namespace tavlo::cli {
namespace {

using namespace std::string_view_literals;

struct Mark {
  std::size_t at = 0;
  std::string_view bytes;  // none: whatever is there
};

struct Signature {
  std::string_view kind;
  Mark first;
  Mark second{};
};

// The first that fits counts, so that what is special stands before what is general.
constexpr auto kSignatures = std::to_array<Signature>({
    {"PNG image", {0, "\x89PNG\r\n\x1A\n"sv}},
    {"JPEG image", {0, "\xFF\xD8\xFF"sv}},
    {"GIF image", {0, "GIF87a"sv}},
    {"GIF image", {0, "GIF89a"sv}},
    {"WebP image", {0, "RIFF"sv}, {8, "WEBP"sv}},
    {"BMP image", {0, "BM"sv}, {6, "\0\0\0\0"sv}},
    {"AVIF image", {4, "ftypavif"sv}},
    {"AVIF image", {4, "ftypavis"sv}},
    {"HEIC image", {4, "ftyphe"sv}},
    {"HEIC image", {4, "ftypmif1"sv}},
    {"HEIC image", {4, "ftypmsf1"sv}},
    {"QuickTime video", {4, "ftypqt  "sv}},
    {"QuickTime video", {4, "moov"sv}},
    {"QuickTime video", {4, "mdat"sv}},
    {"QuickTime video", {4, "wide"sv}},
    {"MP4 video", {4, "ftyp"sv}},
    {"MPEG-TS video", {0, "G"sv}, {188, "G"sv}},
    {"MPEG-TS video", {4, "G"sv}, {196, "G"sv}},
    {"HLS playlist", {0, "#EXTM3U"sv}},
    {"HLS playlist", {0, "\xEF\xBB\xBF#EXTM3U"sv}},
    {"list", {0, "bplist00"sv}},
});

// In lowercase: how a text of the kind may begin, after blanks.
struct Opening {
  std::string_view kind;
  std::string_view text;
};
constexpr auto kOpenings = std::to_array<Opening>({
    {"SVG image", "<svg"},
    {"HTML page", "<!doctype html"},
    {"HTML page", "<html"},
    {"HTML page", "<head"},
    {"HTML page", "<body"},
    {"HTML page", "<title"},
    {"HTML page", "<script"},
    {"HTML page", "<center"},
    {"HTML page", "<h1"},
    {"HTML page", "<p>"},
});

// In a prologue of this kind, the element tells.
constexpr auto kElements = std::to_array<Opening>({
    {"SVG image", "<svg"},
    {"HTML page", "<html"},
    {"XML property list", "<plist"},
});
constexpr auto kPrologues = std::to_array<std::string_view>({"<?xml", "<!--", "<!doctype"});

bool has(std::string_view bytes, const Mark& mark) {
  return bytes.size() >= mark.at && bytes.substr(mark.at).starts_with(mark.bytes);
}

std::string lowercase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

std::string_view withoutBlanks(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  return begin == std::string_view::npos ? std::string_view() : text.substr(begin);
}

std::string_view matroskaKind(std::string_view beginning) {
  constexpr std::size_t kHeader = 64;  // the document's type stands in it
  return beginning.substr(0, kHeader).find("webm") == std::string_view::npos ? "Matroska video" : "WebM video";
}

// The opening bracket and what may follow it.
bool beginsJson(std::string_view text) {
  if (!text.starts_with('{') && !text.starts_with('[')) return false;
  const std::string_view rest = withoutBlanks(text.substr(1));
  if (text.starts_with('{')) return rest.starts_with('"') || rest.starts_with('}');
  return rest.find_first_of("\"[{]-0123456789tfn") == 0;
}

std::string_view textKind(std::string_view beginning) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (beginning.starts_with(kByteOrderMark)) beginning.remove_prefix(kByteOrderMark.size());
  const std::string text = lowercase(withoutBlanks(beginning));
  if (beginsJson(text)) return "JSON text";
  for (const Opening& opening : kOpenings) {
    if (text.starts_with(opening.text)) return opening.kind;
  }
  const auto isPrologue = [&](std::string_view prologue) { return text.starts_with(prologue); };
  if (std::none_of(kPrologues.begin(), kPrologues.end(), isPrologue)) return "other";
  for (const Opening& element : kElements) {
    if (text.find(element.text) != std::string::npos) return element.kind;
  }
  return "other";
}

}  // namespace

std::string_view contentKind(std::string_view beginning) {
  if (beginning.empty()) return "empty";
  for (const Signature& row : kSignatures) {
    if (has(beginning, row.first) && has(beginning, row.second)) return row.kind;
  }
  if (beginning.starts_with("\x1A\x45\xDF\xA3")) return matroskaKind(beginning);
  return textKind(beginning);
}

}  // namespace tavlo::cli
