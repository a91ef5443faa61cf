#!/usr/bin/python3
"""A host app in Python: a session package, a log on standard error, and the files of one folder.

Usage: player.py FOLDER    $TAVLO_LIBRARY is the path of libtavlo.so, when the system does not find it
"""

import sys

import tavlo


def main(folder):
    sdk = tavlo.Tavlo()

    # Where the component keeps its files, and who hears what it has to say.
    sdk.install_platform(container=folder, domain="player")
    sdk.install("logger", printLog=lambda line: print(line, file=sys.stderr))

    # What the requests report. What is not there is sent as "(null)".
    session = {"device_model": "Phone 3"}
    sdk.install("package", text=session.get, limitAdTrackingEnabled=lambda: True)
    sdk.setAppIdToUserDefault("app & co")
    print(sdk.getInAppNotificationAdditionalRequest())

    # None: there is no such file.
    print(sdk.getCacheVideoDataPath("https://cdn.example.com/clip.mp4") or "not cached")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    main(sys.argv[1])
