#!/usr/bin/python3
"""Somebody else's program in Python: all 27 operations, over examples/python/tavlo and the installed library.

Usage: consumer.py MODULE-FOLDER LIBRARY RESOURCES
"""

import hashlib
import sys
import tempfile
import threading
import unittest
from pathlib import Path

sys.path.insert(0, sys.argv.pop(1))
LIBRARY, RESOURCES = sys.argv.pop(1), sys.argv.pop(1)
sys.dont_write_bytecode = True

import tavlo  # noqa: E402: its folder is an argument

SDK = tavlo.Tavlo(LIBRARY)
URL = "http://h/img.png"
IMAGE = hashlib.md5(URL.encode()).hexdigest()


class World(unittest.TestCase):
    """A container of its own for each test, and the lines that the component writes."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.container, self.lines, self.tasks, self.requests, self.menus = folder.name, [], [], [], []
        self.cache = Path(folder.name, "Documents/TavloCache")
        SDK.install("logger", printLog=lambda line: self.lines.append(f"log: {line}"))
        SDK.install_platform(
            container=folder.name, resources=RESOURCES, domain="consumer",
            console={"log": lambda line: self.lines.append(f"console: {line}")},
            url_data={"dataWithContentsOfURL": {URL: b"P\0NG"}.get},
            background_queue={"dispatchAsync": self.tasks.append},
            location_services={"locationServicesEnabled": lambda: True, "authorizationStatus": lambda: 4,
                               "location": lambda: (52.52, -0.12)},
            geocoder={"reverseGeocodeLocation": lambda where, request: self.requests.append((where, request))},
            application={"canOpenURL": lambda url: url == "File Manager://",
                         "presentOpenInMenu": lambda *menu: self.menus.append(menu)})
        self.addCleanup(self.uninstall)

    @staticmethod
    def uninstall():
        for collaborator in tavlo.abi.COLLABORATORS:
            SDK.install(collaborator)
        SDK.uninstall_platform()

    def wrote(self, *expected):
        lines = [line.replace(self.container, "C:") for line in self.lines]
        self.lines.clear()
        self.assertEqual(lines, list(expected))


class Requests(World):
    def setUp(self):
        super().setUp()
        SDK.install("package", text={"app_version": "2 %", "name": "a b", "carrier_name": "x\0y", "page": ""}.get,
                    limitAdTrackingEnabled=lambda: True, resolution=lambda: -3, preRoll=lambda: 2)

    def test_AdRequestHasThePackagesValues(self):
        query = SDK.getAdditionalRequestingString()

        pairs = dict(pair.split("=") for pair in query.split("&"))
        self.assertEqual(len(pairs), 41)
        self.assertEqual([pairs[key] for key in ("app_version", "name", "carrier_name", "Page", "limitedTracking", "age")],
                         ["2 %", "a%20b", "x\0y", "", "1", "(null)"])

    def test_InAppRequestHasTheStoredIds(self):
        SDK.setAppIdToUserDefault("app & co")
        SDK.setOptionalIdToUserDefault("ü")
        SDK.setSecurityKeyToUserDefault("key")

        query = SDK.getInAppNotificationAdditionalRequest()

        self.assertTrue(query.startswith("app_id=app%20%26%20co&os_version=(null)&app_version=2 %&"), query)
        self.assertIn("&opt_userid=%C3%BC&os_id=(null)&Page=&sessionId=(null)", query)
        self.assertEqual([SDK.getAppIdFromUserDefault(), SDK.getOptionalIdFromUserDefault(),
                          SDK.getSecurityKeyTFromUserDefault()], ["app & co", "ü", "key"])

    def test_UserFragmentHasTheCounters(self):
        SDK.install("unique_user_handler", getIsUserNew=lambda: 1, getUniqueUserDay=lambda: "320",
                    getNumberOfWeek=lambda: -46)

        fragment = SDK.getUserInfoRequestString()

        self.assertEqual(fragment, "&ru=1&ru_n=&uud=0&uud_n=320&uuw=0&uuw_n=-46&uum=0&uum_n=0")

    def test_TrackerPayloadHasTheRecords(self):
        records = [("n1", "click", "3"), ("n2", None, 2**40), ("n3", "click", 0)]
        SDK.install("database_handler", getNetworkTrackerDetails=lambda: records)

        payload = SDK.trackerNetworkSessionData()

        self.assertEqual(len(payload), 35)
        self.assertEqual((payload["resolution"], payload["preroll"], payload["swidth"]), ("-3", "2", "720"))
        self.assertEqual(payload["network_event_count"], [{"network_id": "n1", "event": "click", "count": "3"}])
        self.wrote("console: n1  click  3", "console: n2  (null)  1099511627776", "console: n3  click  0")


class Cache(World):
    def test_PathsAreInTheContainer(self):
        path = SDK.getDocumentDirectoryPath("d.mp4")
        Path(path).write_bytes(b"video")

        found = SDK.getCacheVideoPathOfSavedInDB("d.mp4")
        missing = SDK.getCacheVideoDataPath("http://h/v.mp4")

        self.assertEqual((found, missing), (path, None))
        self.assertEqual(path, f"{self.cache}/d.mp4")
        self.wrote("log: TavloCache directory created!", "log: Cached directory path : C:/Documents/TavloCache/d.mp4",
                   "log: Cached directory path : C:/Documents/TavloCache/d.mp4",
                   "log: Cached directory path : C:/Documents/TavloCache/d41b4ed42b5cec0e1794ba03120ab39d.mp4",
                   "log: getCacheVideoDataPath() - ERROR: Cache Video Data  does not exist")
        self.assertEqual([SDK.deleteCachedVideo(path), SDK.deleteCachedVideo(path)], [True, False])

    def test_BannerIsDownloadedByTheQueue(self):
        SDK.cachedBannerImage(URL)
        before = SDK.getCacheBannerImagePath(URL)
        SDK.run_task(self.tasks.pop())
        after = SDK.getCacheBannerImagePath(URL)

        self.assertEqual((before, after), (None, f"{self.cache}/{IMAGE}"))
        self.assertEqual(Path(after).read_bytes(), b"P\0NG")

    def test_ListsComeBackAndAreSortedUntilTheCacheIsCleared(self):
        late, early = {"startdate": tavlo.Date(2.5), "n": 1}, {"startdate": tavlo.Date(-1.0), "n": 2}
        Path(SDK.getDocumentDirectoryPath("VideoListAPI")).write_bytes(SDK.archive_encode([late, early]))

        listed = SDK.getCachedVideoList(True)
        ordered = SDK.sortCacahedVideoDates(listed)
        SDK.clearCache()
        cleared = SDK.getCachedVideoList(True)

        self.assertEqual((listed, ordered, cleared), ([late, early], [early, late], tavlo.ABSENT))
        self.assertIs(SDK.sortCacahedVideoDates(tavlo.ABSENT), tavlo.ABSENT)

    def test_NoArchiveIsAnErrorThatNamesTheFile(self):
        path = Path(SDK.getDocumentDirectoryPath("InterstitialListAPI"))
        path.write_bytes(b"none")

        with self.assertRaises(tavlo.TavloError) as raised:
            SDK.getCachedVideoList(False)

        self.assertEqual(raised.exception.status, 3)
        self.assertTrue(str(raised.exception).startswith(f"tavlo_getCachedVideoList: {path}: "), raised.exception)


class Services(World):
    def test_PositionAndAddressReachThePackage(self):
        written = []
        SDK.install("package", setLatitudeAndLogitude=lambda *both: written.append(both), setUserAddress=written.append)

        SDK.fetchCurrentLocation()
        where, request = self.requests.pop()
        SDK.answer_geocode_request(request, [{"locality": "Berlin", "thoroughfare": "A/B"}])

        self.assertEqual(where, (52.52, -0.12))
        self.assertEqual(written, [("52.520000", "-0.120000"), "", '{"area":"A\\/B","city":"Berlin"}'])

    def test_GeocodersErrorIsLogged(self):
        SDK.fetchCurrentLocation()
        SDK.answer_geocode_request(self.requests.pop()[1], error="nobody knows")

        self.wrote("console: location authorization: 4",
                   "console: reverseGeocodeLocation:completionHandler: Completion Handler called!",
                   "console: Geocode failed with error: nobody knows")

    def test_BundleAndImagesAreLoaded(self):
        bundle = SDK.frameworkBundle()
        volume, mute = SDK.getVolumeImage(), SDK.getMuteImage()

        self.assertEqual(bundle("volume", "png"), f"{RESOURCES}/TavloSDKResource.bundle/volume.png")
        self.assertIsNone(bundle("volume", "gif"))
        for image in volume, mute:
            self.assertEqual((image.width, image.height, len(image.pixels)), (64, 64, 16384))
        self.assertNotEqual(volume.pixels, mute.pixels)

    def test_LogIsOfferedWhateverTheProbeSays(self):
        SDK.getExportTavloSDKLog("x11:2a")

        self.assertEqual(self.menus, [(f"file://{self.cache}/TavloLogFile.txt", "x11:2a", True)])
        self.wrote("console: Documents Directory: file://C:/Documents/", "log: Log file is created")
        self.assertIs(SDK.quillmixInstalledOnThisDevice(), True)


class Utilities(World):
    def test_DigestIsOfTextsOnly(self):
        reports = []
        SDK.install("exception_reporter", tavloException=lambda message: reports.append(message) or True)

        digests = [SDK.md5("abc\0more"), SDK.md5(tavlo.ABSENT), SDK.md5(7)]

        self.assertEqual(digests, ["900150983cd24fb0d6963f7d28e17f72", None, None])
        self.assertEqual(reports, ["md5:() Invalid string for passed for hash"])

    def test_ReportersFailureReachesTheCaller(self):
        SDK.install("exception_reporter", tavloException=lambda message: False)

        with self.assertRaises(tavlo.TavloError) as raised:
            SDK.md5(None)

        self.assertEqual((raised.exception.status, str(raised.exception)),
                         (4, "tavlo_md5: the exception reporter failed on: md5:() Invalid string for passed for hash"))

    def test_ExtensionIsThatOfThePath(self):
        extensions = [SDK.getFileExtensionFromUrl(url) for url in ("http://h/c.tar.gz?x=1", "http://h/", "a b", None)]

        self.assertEqual(extensions, ["gz", "", None, None])

    def test_ValuesOfAllKindsComeBack(self):
        value = [None, True, -1, 2**100, 1.5, tavlo.Date(0.25), "ü\0", b"\xff", tavlo.Set(["a"]), {"k": [{}]},
                 tavlo.Url("b", tavlo.Url("http://h/")), tavlo.Object("Person", {"name": "x"}), tavlo.Map([(1, "one")])]

        copy = SDK.archive_decode(SDK.archive_encode(value))

        self.assertEqual(copy, value)
        self.assertEqual(SDK.property_list_decode(SDK.property_list_encode({"u": tavlo.Uid(3)})), {"u": tavlo.Uid(3)})

    def test_WrongNamesAreAnsweredWithTheRightOnes(self):
        for wrong, error in (
            (lambda: SDK.install("loger", printLog=print), "a host brings no loger, but package, unique_user_handler, "
                                                           "database_handler, logger, exception_reporter"),
            (lambda: SDK.install("logger", print=print), "a logger has no print, but printLog"),
            (lambda: SDK.install_platform(containr="x"), "a platform has no containr, but container, domain, resources, "
             "certificate_authorities, geocoding_url, console, url_data, file_manager, user_defaults, "
             "background_queue, location_services, geocoder, application"),
            (lambda: SDK.install_platform(console=print), "console takes a dict of callbacks: log"),
            (lambda: SDK.getCacheVideoDataPath(5), "a text is a str, bytes or None, not int"),
        ):
            with self.subTest(error), self.assertRaises(TypeError) as raised:
                wrong()
            self.assertEqual(str(raised.exception), error)

    def test_EachThreadHasItsOwnError(self):
        errors = {}

        def fail(option, value):
            try:
                SDK.install_platform(**{option: value})
            except tavlo.TavloError as error:
                errors[option] = str(error)

        threads = [threading.Thread(target=fail, args=pair) for pair in (("domain", "a/b"), ("container", ""))]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()

        self.assertIn('"a/b"', errors["domain"])
        self.assertIn("container", errors["container"])


if __name__ == "__main__":
    unittest.main()
