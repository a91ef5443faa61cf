#include "cli/CacheCommandLine.h"

#include <array>

#include "cli/CacheHelpTexts.h"
#include "cli/Named.h"

namespace tavlo::cli {
namespace {

using Words = std::vector<std::string>;

constexpr auto kLists = std::to_array<Named<host::CachedList>>(
    {{"video", host::CachedList::video}, {"interstitial", host::CachedList::interstitial}});

host::CachedList listOf(const std::string& name) { return named(kLists, name, "the list").value; }

template <CacheLookUpName lookUp>
Command makeLookUp(const Words& words) {
  return LookUpInCache{.lookUp = lookUp, .text = words[0]};
}

constexpr ArgumentRow kUrl{.name = "URL", .description = "As the SDK has it, blanks included"};
constexpr ArgumentRow kName{.name = "NAME", .description = "Of a file in the cache directory"};
constexpr ArgumentRow kList{
    .name = "LIST", .description = "video or interstitial", .choices = [] { return namesOf(kLists); }};
constexpr ArgumentRow kFile{.name = "FILE", .description = "JSON, - for standard input"};

constexpr auto kRows = std::to_array<CacheCommandRow>({
    {"path", help::kCachePath, help::kCachePathFooter, {{kName}}, makeLookUp<CacheLookUpName::path>},
    {"video", help::kCacheVideo, help::kCacheVideoFooter, {{kUrl}}, makeLookUp<CacheLookUpName::video>},
    {"saved", help::kCacheSaved, help::kCacheSavedFooter, {{kName}}, makeLookUp<CacheLookUpName::saved>},
    {"banner", help::kCacheBanner, help::kCacheBannerFooter, {{kUrl}}, makeLookUp<CacheLookUpName::banner>},
    {"fetch",
     help::kCacheFetch,
     help::kCacheFetchFooter,
     {{{.name = "URL", .description = "Of images: http, https or file", .mayRepeat = true}}},
     [](const Words& words) -> Command { return FetchBanners{.urls = words}; }},
    {"explain",
     help::kCacheExplain,
     help::kCacheExplainFooter,
     {{kUrl}},
     [](const Words& words) -> Command { return ExplainUrl{.url = words[0]}; }},
    {"ls",
     help::kCacheLs,
     help::kCacheLsFooter,
     {},
     [](const Words& /*words*/) -> Command { return ListCacheEntries{}; }},
    {"list",
     help::kCacheList,
     help::kCacheListFooter,
     {{kList}},
     [](const Words& words) -> Command { return PrintCachedList{.list = listOf(words[0])}; }},
    {"put-list",
     help::kCachePutList,
     help::kCachePutListFooter,
     {{kList, kFile}},
     [](const Words& words) -> Command { return PutCachedList{.list = listOf(words[0]), .file = words[1]}; }},
    {"sort",
     help::kCacheSort,
     help::kCacheSortFooter,
     {{kFile}},
     [](const Words& words) -> Command { return SortList{.file = words[0]}; }},
    {"delete",
     help::kCacheDelete,
     help::kCacheDeleteFooter,
     {{{.name = "PATH", .description = "Whole, as video, saved and banner print it"}}},
     [](const Words& words) -> Command { return DeleteCached{.path = words[0]}; }},
    {"clear",
     help::kCacheClear,
     help::kCacheClearFooter,
     {},
     [](const Words& /*words*/) -> Command { return ClearCache{}; }},
});

}  // namespace

std::span<const CacheCommandRow> cacheCommands() { return kRows; }

}  // namespace tavlo::cli
