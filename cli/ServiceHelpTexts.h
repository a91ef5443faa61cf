// What --help says about the commands for position, images, log and services.
#pragma once

namespace tavlo::cli::help {

inline constexpr const char* kLocate = "Fetch the position and its address as the SDK does, and show what is sent.";
inline constexpr const char* kLocateFooter =
    "Prints the position, the address and the pairs of the ad request that they become. The\n"
    "console lines of the operation go to standard error. The geocoder's answer is waited for, up\n"
    "to --timeout; an answer that is an error leaves the address empty. Without --wait nobody is\n"
    "asked for permission, and what is not allowed or not known prints (null).\n"
    "With --wait the exit code is 1 when there is no permission or no position. When time runs\n"
    "out, and on Ctrl-C, it is 1, and what is known by then is printed and saved.\n"
    "\n"
    "Nothing is kept but by --save. --json prints a session file, which tavlo request takes.\n"
    "docs/locate.md has the steps and the table of places.\n"
    "\n"
    "Examples:\n"
    "  tavlo locate --fixed 52.52,13.405 --geocoder table:examples/places.json --why\n"
    "  tavlo locate --wait --save here.json && tavlo request ad --session here.json";

inline constexpr const char* kImage = "Show an image of the player's sound toggle: its size, its file, a preview.";
inline constexpr const char* kImageFooter =
    "The image is loaded as the SDK does, from TavloSDKResource.bundle in the container's\n"
    "Resources, or, when there is none, in those beside the program or installed with it. On a\n"
    "terminal a preview is drawn, in half blocks with colours, or in characters where there are none.\n"
    "(null): there is no such image. A file that is there is never overwritten.\n"
    "\n"
    "Example:\n"
    "  tavlo image mute --out mute.png";

inline constexpr const char* kLog = "Show the SDK's log file, and hand it to another app.";
inline constexpr const char* kLogFooter =
    "The log is CONTAINER/Documents/TavloCache/TavloLogFile.txt: one line a message, each with its\n"
    "time. The SDK's operations write it, once the cache directory is there. Control characters\n"
    "are shown as escapes. --json has each line's time and message. A line of more than 1 MiB is\n"
    "printed in parts.\n"
    "\n"
    "Example:\n"
    "  tavlo log tail --lines 20";
inline constexpr const char* kLogShow = "Print the whole log.";
inline constexpr const char* kLogShowFooter = "Example:\n  tavlo log show --json";
inline constexpr const char* kLogTail = "Print the last lines of the log.";
inline constexpr const char* kLogTailFooter =
    "--follow also notices when the log is replaced or made anew; Ctrl-C ends it, exit code 0.\n"
    "\n"
    "Example:\n"
    "  tavlo log tail --follow";
inline constexpr const char* kLogExport = "Let the user choose an app, and open the log in it.";
inline constexpr const char* kLogExportFooter =
    "The desktop's portal shows the menu of apps; the choice is waited for, until Ctrl-C. Prints\n"
    "opened or cancelled. Exit code 1: no menu could be shown, or no app could open the log; the\n"
    "error says why.\n"
    "\n"
    "Example:\n"
    "  tavlo log export";

inline constexpr const char* kDoctor =
    "Examine what this machine and the container offer, and what to do where it lacks.";
inline constexpr const char* kDoctorFooter =
    "A line a check: ok; note for an optional service that is missing and for what is not there\n"
    "yet; BROKEN for what stands in the way. Exit code 1 when anything is broken. Nobody is asked\n"
    "for permission, and nothing is made but one file in the container, which is removed at once.\n"
    "Services are waited for at most 1 second each, a geocoder 10 seconds.\n"
    "\n"
    "Example:\n"
    "  tavlo doctor --json";

}  // namespace tavlo::cli::help
