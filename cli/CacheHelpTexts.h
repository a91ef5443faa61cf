// What --help says about `tavlo cache`.
#pragma once

namespace tavlo::cli::help {

inline constexpr const char* kCache = "Look up, fetch, list and clear what the media cache of the container holds.";
inline constexpr const char* kCacheFooter =
    "The cache is CONTAINER/Documents/TavloCache. These commands do what the SDK's operations do\n"
    "in an app, log lines included: those go to TavloLogFile.txt in that folder. ls and explain\n"
    "only look, and make nothing. docs/cache.md has every file and every name.\n"
    "\n"
    "Example:\n"
    "  tavlo cache fetch https://cdn.example.com/banner.png\n"
    "  tavlo cache banner https://cdn.example.com/banner.png";

inline constexpr const char* kCachePath = "Print the path of a name in the cache directory.";
inline constexpr const char* kCachePathFooter =
    "The directory is made when it is missing; whether the file is there is not looked at.\n"
    "(null): there is no directory and none can be made.\n"
    "\n"
    "Example:\n"
    "  tavlo cache path clip.mp4";
inline constexpr const char* kCacheVideo = "Print the path of the cached video of a URL.";
inline constexpr const char* kCacheVideoFooter =
    "(null): it is not there; tavlo cache explain URL tells why.\n"
    "\n"
    "Example:\n"
    "  tavlo cache video https://cdn.example.com/clip.mp4";
inline constexpr const char* kCacheSaved = "Print the path of a cached video by the name that the SDK's database has.";
inline constexpr const char* kCacheSavedFooter =
    "(null): it is not there.\n"
    "\n"
    "Example:\n"
    "  tavlo cache saved 46a031da1eba2acf8ec285d177c677da.mp4";
inline constexpr const char* kCacheBanner = "Print the path of the cached banner image of a URL.";
inline constexpr const char* kCacheBannerFooter =
    "(null): it is not there; tavlo cache explain URL tells why.\n"
    "\n"
    "Example:\n"
    "  tavlo cache banner https://cdn.example.com/banner.png";

inline constexpr const char* kCacheFetch = "Download banner images into the cache, and wait for them.";
inline constexpr const char* kCacheFetchFooter =
    "Prints a line a URL: what became of it, its bytes, the name it is stored under. On a\n"
    "terminal the progress shows meanwhile. Exit code 1 when any failed; Ctrl-C ends it, and what\n"
    "is stored by then stays. An image that is there already is downloaded again.\n"
    "\n"
    "Example:\n"
    "  tavlo cache fetch https://cdn.example.com/a.png https://cdn.example.com/b.png";

inline constexpr const char* kCacheExplain = "Show the names that a URL has in the cache, and why a look-up misses.";
inline constexpr const char* kCacheExplainFooter =
    "Looks only: nothing is made, fetched or logged.\n"
    "\n"
    "Example:\n"
    "  tavlo cache explain ' https://cdn.example.com/clip.mp4 '";

inline constexpr const char* kCacheLs = "List the cache directory: name, kind by content, size and age.";
inline constexpr const char* kCacheLsFooter =
    "Looks only: nothing is made or logged. --json has the time of the last change, in seconds\n"
    "since 1970, in place of the age.\n"
    "\n"
    "Example:\n"
    "  tavlo cache ls --json";

inline constexpr const char* kCacheList = "Print an archived list as JSON.";
inline constexpr const char* kCacheListFooter =
    "BEWARE: when the list is missing the SDK empties the whole cache, the other list and all\n"
    "videos and images included; only the log file stays. So does this command, and prints\n"
    "(null). tavlo cache ls shows beforehand whether VideoListAPI or InterstitialListAPI is there.\n"
    "--json prints it in one line. docs/cache.md has the shape: {\"$date\": ...} and the like.\n"
    "\n"
    "Example:\n"
    "  tavlo cache list video";
inline constexpr const char* kCachePutList = "Write an archived list from JSON, as the SDK's list writer does.";
inline constexpr const char* kCachePutListFooter =
    "The JSON has the shape that list prints. The path of the list is printed; the old list\n"
    "stands when anything goes wrong.\n"
    "\n"
    "Example:\n"
    "  tavlo cache put-list video records.json";
inline constexpr const char* kCacheSort = "Print a list in the order of its start dates.";
inline constexpr const char* kCacheSortFooter =
    "The JSON has the shape that list prints. Nothing in the cache is read or changed.\n"
    "\n"
    "Example:\n"
    "  tavlo cache list video --json | tavlo cache sort -";

inline constexpr const char* kCacheDelete = "Remove the item at exactly this path.";
inline constexpr const char* kCacheDeleteFooter =
    "BEWARE: the path need not lie in the cache, and a folder goes with everything in it. When\n"
    "nothing is removed the exit code is 1.\n"
    "\n"
    "Example:\n"
    "  tavlo cache delete \"$(tavlo cache banner https://cdn.example.com/banner.png)\"";
inline constexpr const char* kCacheClear = "Remove everything in the cache directory but the log file.";
inline constexpr const char* kCacheClearFooter =
    "When anything else is there afterwards the exit code is 1.\n"
    "\n"
    "Example:\n"
    "  tavlo cache clear";

}  // namespace tavlo::cli::help
