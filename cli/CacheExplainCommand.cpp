// cache explain: which names a URL has in the cache, and why a look-up misses.
#include <filesystem>
#include <string>
#include <system_error>

#include "TavloUtility.h"
#include "cache/UrlText.h"
#include "cli/ArchiveJson.h"
#include "cli/CacheNames.h"
#include "cli/CacheSession.h"
#include "cli/Commands.h"
#include "common/Format.h"

namespace tavlo::cli {
namespace {

namespace fs = std::filesystem;

struct NamedFile {
  Text name;
  bool exists = false;
};

struct Explanation {
  std::string url;
  std::string cleaned;  // for look-ups
  std::string trimmed;  // for the download of a banner
  Text extension;       // of the text as given
  Text cleanedExtension;
  NamedFile video;
  NamedFile bannerWritten;
  NamedFile bannerLookedUp;
};

NamedFile fileOf(const fs::path& folder, const Text& name) {
  // A path that holds U+0000 never reaches the system.
  if (!name || name->find('\0') != std::string::npos) return {.name = name};
  std::error_code ignored;
  return {.name = name, .exists = fs::exists(folder / *name, ignored)};
}

Explanation explain(const std::string& url, const fs::path& folder) {
  const CacheNames names = cacheNamesOf(url);
  std::string room;
  const std::string cleaned(cleanedUrl(url, room));
  return {.url = url,
          .cleaned = cleaned,
          .trimmed = std::string(trimmedOfWhitespace(url)),
          .extension = TavloUtility::getFileExtensionFromUrl(url),
          .cleanedExtension = TavloUtility::getFileExtensionFromUrl(cleaned),
          .video = fileOf(folder, names.video),
          .bannerWritten = fileOf(folder, names.bannerWritten),
          .bannerLookedUp = fileOf(folder, names.bannerLookedUp)};
}

std::string extensionReason(const Explanation& it) {
  if (!it.video.name) return "";
  if (it.extension == "") return "The path of the URL has no extension, so the video's name ends in a dot.";
  if (it.extension) return "";
  const std::string name = "so the video's name ends in .(null)";
  return it.cleanedExtension
             ? "The text as given is no URL, only the cleaned one is, and the extension comes from the "
               "text as given, " +
                   name + "."
             : "The text is no URL (a blank, or another character that has to be percent-encoded?), " + name + ".";
}

std::string videoReason(const Explanation& it) {
  if (!it.video.name) return "The video look-up answers at once: the text is empty.";
  return it.video.exists ? "The video look-up finds its file."
                         : "The video look-up misses: no file of that name is there. It was never stored, stored under "
                           "another name, or cleared.";
}

std::string bannerReason(const Explanation& it) {
  if (!it.bannerLookedUp.name) return "The banner look-up answers at once: the cleaned text is empty.";
  if (it.bannerLookedUp.exists) return "The banner look-up finds its file.";
  if (it.bannerLookedUp.name != it.bannerWritten.name) {
    return "The banner look-up misses, and will: newlines in the text, and at its ends, are removed for the look-up "
           "but "
           "not for storing. Fetch and look up the cleaned text.";
  }
  return "The banner look-up misses: no file of that name is there. It was never stored, or cleared.";
}

std::vector<std::string> reasons(const Explanation& it) {
  std::vector<std::string> sentences;
  for (std::string& sentence : std::vector{extensionReason(it), videoReason(it), bannerReason(it)}) {
    if (!sentence.empty()) sentences.push_back(std::move(sentence));
  }
  return sentences;
}

void answerTable(const Explanation& it, const Run& run) {
  const auto row = [](const std::string& what, const std::string& shown, const char* state = "") {
    return std::vector<Cell>{{.text = what, .style = Style::faint}, {.text = shown}, {.text = state}};
  };
  const auto text = [](const Text& value) { return value ? cli::quoted(*value) : std::string(kAbsent); };
  const auto file = [&](const std::string& what, const NamedFile& named) {
    if (!named.name) return row(what, std::string(kAbsent));
    return row(what, displayed(*named.name), named.exists ? "is there" : "missing");
  };
  run.output.answer(
      table({row("text as given", cli::quoted(it.url)), row("cleaned for look-ups", cli::quoted(it.cleaned)),
             row("trimmed for the download", cli::quoted(it.trimmed)), row("extension, as given", text(it.extension)),
             row("digest, cleaned", text(TavloUtility::md5(Value(it.cleaned)))), file("video file", it.video),
             file("banner is stored as", it.bannerWritten), file("banner is looked up as", it.bannerLookedUp)},
            run.output.tableLook()));
  run.output.answer("\n");
  for (const std::string& reason : reasons(it)) run.output.answerLine(reason);
}

void answerJson(const Explanation& it, const Run& run) {
  const auto text = [](const Text& value) { return value ? Value(*value) : Value(Uid{}); };
  const auto file = [&](const NamedFile& named) {
    return Value::map({{"name", text(named.name)}, {"exists", named.exists}});
  };
  ValueList sentences;
  for (const std::string& reason : reasons(it)) sentences.emplace_back(reason);
  const Value json = Value::map({{"url", it.url},
                                 {"cleaned", it.cleaned},
                                 {"trimmed", it.trimmed},
                                 {"extension", text(it.extension)},
                                 {"digest", text(TavloUtility::md5(Value(it.cleaned)))},
                                 {"video", file(it.video)},
                                 {"bannerWritten", file(it.bannerWritten)},
                                 {"bannerLookedUp", file(it.bannerLookedUp)},
                                 {"reasons", Value::list(std::move(sentences))}});
  run.output.answerLine(toArchiveJson(json, ArchiveLayout::oneLine));
}

}  // namespace

void execute(const ExplainUrl& command, const Run& run) {
  const Explanation explanation = explain(command.url, cacheFolder(Place(run.globals)));
  if (run.globals.json) return answerJson(explanation, run);
  answerTable(explanation, run);
}

}  // namespace tavlo::cli
