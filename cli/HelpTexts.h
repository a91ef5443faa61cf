// What --help says beside the options themselves.
#pragma once

namespace tavlo::cli::help {

inline constexpr const char* kProgram =
    "tavlo shows and checks what the SDK's utility component does: the four requests that it\n"
    "builds, the identifiers, tracker records and user counters that it keeps, its media cache,\n"
    "its position and address, its images and its log, and its text operations.";

inline constexpr const char* kProgramFooter =
    "Examples:\n"
    "  tavlo request ad --session examples/session.json --pretty\n"
    "      what the ad request of a session sends, value by value\n"
    "  tavlo id set app com.example.player && tavlo id show\n"
    "      stores the app id in the user's container and shows what is stored\n"
    "  tavlo cache explain https://cdn.example.com/clip.mp4\n"
    "      the names of a URL's files in the media cache, and which are there\n"
    "  tavlo locate --fixed 52.52,13.405 --geocoder table:examples/places.json --why\n"
    "      a position, its address, and how each step was decided\n"
    "  tavlo doctor\n"
    "      what this machine offers, and what to do where it lacks\n"
    "  tavlo encode < values.txt\n"
    "      percent-encodes each line\n"
    "\n"
    "Exit codes:\n"
    "  0  done; a value that is absent prints (null), with --json null\n"
    "  1  failed; one line on standard error says what, where and what to do\n"
    "  2  the command line is wrong; nothing was done\n"
    "\n"
    "The container is --container, else $TAVLO_CONTAINER, else the domain's folder below\n"
    "$XDG_DATA_HOME (~/.local/share). Each command has its own help: tavlo request --help";

inline constexpr const char* kRequest =
    "Print what the SDK sends: a query text (ad, in-app, user) or a payload (tracker).";
inline constexpr const char* kRequestFooter =
    "With --session nothing stored is read and nothing is written. Without it the identifiers,\n"
    "tracker records and counters of the container are used, and package values are absent.\n"
    "tracker prints one line of JSON.\n"
    "\n"
    "Example:\n"
    "  echo '{\"package\": {\"page\": \"Home & News\"}}' | tavlo request ad --session -";

inline constexpr const char* kId = "Read and store the three identifiers.";
inline constexpr const char* kIdFooter =
    "KEY is app, optional or security, or the settings' own ApplicationId, OptionalId or\n"
    "SecurityKey.\n"
    "\n"
    "Example:\n"
    "  tavlo id set optional user-7";
inline constexpr const char* kIdGet = "Print one identifier.";
inline constexpr const char* kIdGetFooter = "Example:\n  tavlo id get security --reveal";
inline constexpr const char* kIdSet = "Store one identifier; it is on disk when the program ends.";
inline constexpr const char* kIdSetFooter =
    "Nothing removes an identifier. A value that begins with - goes after --.\n"
    "\n"
    "Example:\n"
    "  tavlo id set app com.example.player";
inline constexpr const char* kIdShow = "Print all three.";
inline constexpr const char* kIdShowFooter = "Example:\n  tavlo id show --json";

inline constexpr const char* kMd5 = "Print the MD5 digest of each text, up to its first U+0000.";
inline constexpr const char* kMd5Footer = "Example:\n  tavlo md5 https://cdn.example.com/clip.mp4";
inline constexpr const char* kExtension = "Print the file extension of each URL, (null) for what is no URL.";
inline constexpr const char* kExtensionFooter = "Example:\n  tavlo extension https://cdn.example.com/clip.mp4?s=1";
inline constexpr const char* kEncode = "Percent-encode each text as one value of a query.";
inline constexpr const char* kEncodeFooter = "Example:\n  tavlo encode 'Home & News'";

inline constexpr const char* kContract = "Print the pairs of a request: keys, sources and renderings.";
inline constexpr const char* kContractFooter =
    "Without a name, all four. --json is the same as --format json.\n"
    "\n"
    "Example:\n"
    "  tavlo contract tracker --format markdown";

inline constexpr const char* kEvent = "Add, list and clear the tracker records of the container.";
inline constexpr const char* kEventFooter = "Example:\n  tavlo event add network-7 impression 3";
inline constexpr const char* kEventAdd = "Count an event of a network.";
inline constexpr const char* kEventAddFooter = "Example:\n  tavlo event add network-7 impression 3";
inline constexpr const char* kEventList = "Print the records: network, event and count, a tab between them.";
inline constexpr const char* kEventListFooter = "Example:\n  tavlo event list --json";
inline constexpr const char* kEventClear = "Remove all records.";
inline constexpr const char* kEventClearFooter = "Example:\n  tavlo event clear";

inline constexpr const char* kUse = "Record one use in the unique-user counters, as the SDK does once a session.";
inline constexpr const char* kUseFooter = "Example:\n  tavlo use && tavlo request user";

inline constexpr const char* kDemo = "Show the component at work, and check what it answers.";
inline constexpr const char* kDemoFooter =
    "Works in a temporary container unless --container names one; its settings are those of\n"
    "the domain \"tavlo-demo\". The media cache is always a temporary one, since it is cleared in\n"
    "the end. Its images come from a server that the demo starts on this machine.\n"
    "\n"
    "Example:\n"
    "  tavlo demo";

}  // namespace tavlo::cli::help
