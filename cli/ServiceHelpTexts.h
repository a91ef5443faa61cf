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
    "out, and on Ctrl-C, it is 1, and what is known by then is printed.\n"
    "\n"
    "Nothing is kept but by --save. --json prints a session file, which tavlo request takes.\n"
    "docs/locate.md has the steps and the table of places.\n"
    "\n"
    "Examples:\n"
    "  tavlo locate --fixed 52.52,13.405 --geocoder table:examples/places.json --why\n"
    "  tavlo locate --wait --save here.json && tavlo request ad --session here.json";

}  // namespace tavlo::cli::help
