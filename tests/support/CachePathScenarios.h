// The cache directory and the video look-ups, as scenarios that hold in any world (CacheWorlds.h).
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TavloUtility.h"

namespace tavlo::test {

using Lines = std::vector<std::string>;

template <class World>
class CachePaths : public testing::Test {
 protected:
  // The path that a name has in the cache directory.
  [[nodiscard]] Text cached(const std::string& name) const { return world_.place("TavloCache/" + name); }

  World world_;
};

TYPED_TEST_SUITE_P(CachePaths);

// Under which name a video is looked for: the digest of the cleaned URL, the extension of the raw one.
struct VideoName {
  const char* name;
  const char* url;
  const char* fileName;
};

inline const std::vector<VideoName> kVideoNames{
    {"Plain", "http://h/v/a.mp4", "a68d4b2f3ac163441bebacaf205897bb.mp4"},
    {"OneQuery", "http://h/v/a.mp4?x=1", "30063746515273c9037f6331cb074885.mp4"},
    {"AnotherQuery", "http://h/v/a.mp4?x=2", "39af86037e0e4854566e94cb164a4cd9.mp4"},
    {"NewlineInside", "http://h/v\n/a.mp4", "a68d4b2f3ac163441bebacaf205897bb.(null)"},
    {"NewlineInsideAndBlanksAround", " \thttp://h/v/a\n.mp4 ", "a68d4b2f3ac163441bebacaf205897bb.(null)"},
    {"NewlineAtTheEnd", "http://h/v/a.mp4\n", "a68d4b2f3ac163441bebacaf205897bb.(null)"},
    {"BlankAtTheEnd", "http://h/v/a.mp4 ", "a68d4b2f3ac163441bebacaf205897bb.(null)"},
    {"InnerBlankStays", "http://h/a b.mp4", "d24a883da458cfbe3073a8c1c3154e24.(null)"},
    {"NoExtension", "http://h/clip", "49984795b1fae0ed2ccde2c2649eaf64."},
    {"EmptyExtension", "http://h/v/a.", "d57485866faac659c132219f60b86116."},
    {"OnlyBlanks", " \n ", "d41d8cd98f00b204e9800998ecf8427e.(null)"},
    {"ByteOrderMarkStays", "\xEF\xBB\xBFhttp://h/a.mp4", "6c84aa9b7150104f864a88d7f7cd5d6c.(null)"},
    {"ZeroWidthSpaceIsNoBlank", "http://h/a.mp4\xE2\x80\x8B", "5ab1c6d8214cf2bf79330cc9ca34166f.(null)"}};

TYPED_TEST_P(CachePaths, TheFirstCallMakesTheDirectory) {
  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a.bin"), this->cached("a.bin"));

  EXPECT_EQ(this->world_.names(""), (Lines{"TavloCache"}));
  EXPECT_EQ(this->world_.takeLines(),
            (Lines{"TavloCache directory created!", "Cached directory path : DOCUMENTS/TavloCache/a.bin"}));
}

TYPED_TEST_P(CachePaths, LaterCallsFindTheDirectory) {
  this->world_.putFolder("TavloCache");

  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a.bin"), this->cached("a.bin"));

  EXPECT_EQ(this->world_.takeLines(), (Lines{"Cached directory path : DOCUMENTS/TavloCache/a.bin"}));
  EXPECT_EQ(this->world_.names("TavloCache"), Lines{});
}

TYPED_TEST_P(CachePaths, ADirectoryDeletedBetweenTwoCallsIsMadeAnew) {
  ASSERT_TRUE(TavloUtility::getDocumentDirectoryPath("a"));
  this->world_.remove("TavloCache");
  static_cast<void>(this->world_.takeLines());

  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a"), this->cached("a"));

  EXPECT_EQ(this->world_.takeLines(),
            (Lines{"TavloCache directory created!", "Cached directory path : DOCUMENTS/TavloCache/a"}));
}

TYPED_TEST_P(CachePaths, APlainFileOfItsNameIsReplacedByADirectory) {
  this->world_.put("TavloCache", "squatter");

  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("a"), this->cached("a"));

  EXPECT_EQ(this->world_.takeLines(),
            (Lines{"TavloCache directory is actually a file! .. removing it", "TavloCache directory created!",
                   "Cached directory path : DOCUMENTS/TavloCache/a"}));
  this->world_.put("TavloCache/a", "fits");
  EXPECT_EQ(this->world_.bytes("TavloCache/a"), "fits");
}

TYPED_TEST_P(CachePaths, TheNameIsJoinedUnchanged) {
  this->world_.putFolder("TavloCache");

  for (const char* const name : {"sub/clip.mp4", " a ", "..", "a/", "\xC3\xA9", "a//b", "\xFF"}) {
    EXPECT_EQ(TavloUtility::getDocumentDirectoryPath(name), this->cached(name));
  }

  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath("/slash"), this->cached("slash"));
  EXPECT_EQ(TavloUtility::getDocumentDirectoryPath(""), Text(this->world_.place("TavloCache")));
}

TYPED_TEST_P(CachePaths, AVideoIsFoundUnderTheDigestAndTheExtensionOfItsUrl) {
  this->world_.putFolder("TavloCache");
  this->world_.put("TavloCache/a68d4b2f3ac163441bebacaf205897bb.mp4", "video");

  EXPECT_EQ(TavloUtility::getCacheVideoDataPath("http://h/v/a.mp4"),
            this->cached("a68d4b2f3ac163441bebacaf205897bb.mp4"));

  EXPECT_EQ(this->world_.takeLines(),
            (Lines{"Cached directory path : DOCUMENTS/TavloCache/a68d4b2f3ac163441bebacaf205897bb.mp4"}));
}

TYPED_TEST_P(CachePaths, EachUrlHasItsName) {
  this->world_.putFolder("TavloCache");
  for (const VideoName& video : kVideoNames) {
    SCOPED_TRACE(video.name);
    const std::string path = "Cached directory path : DOCUMENTS/TavloCache/" + std::string(video.fileName);

    EXPECT_EQ(TavloUtility::getCacheVideoDataPath(video.url), std::nullopt);
    EXPECT_EQ(this->world_.takeLines(),
              (Lines{path, "getCacheVideoDataPath() - ERROR: Cache Video Data  does not exist"}));

    this->world_.put("TavloCache/" + std::string(video.fileName), "video");
    EXPECT_EQ(TavloUtility::getCacheVideoDataPath(video.url), this->cached(video.fileName));
    EXPECT_EQ(this->world_.takeLines(), (Lines{path}));
    this->world_.remove("TavloCache/" + std::string(video.fileName));
  }
}

TYPED_TEST_P(CachePaths, AMissingVideoIsToldAfterItsPath) {
  EXPECT_EQ(TavloUtility::getCacheVideoDataPath("http://h/v/a.mp4"), std::nullopt);

  EXPECT_EQ(this->world_.takeLines(),
            (Lines{"TavloCache directory created!",
                   "Cached directory path : DOCUMENTS/TavloCache/a68d4b2f3ac163441bebacaf205897bb.mp4",
                   "getCacheVideoDataPath() - ERROR: Cache Video Data  does not exist"}));
}

TYPED_TEST_P(CachePaths, AnAbsentOrEmptyUrlTouchesNoFile) {
  EXPECT_EQ(TavloUtility::getCacheVideoDataPath(std::nullopt), std::nullopt);
  EXPECT_EQ(TavloUtility::getCacheVideoDataPath(""), std::nullopt);

  EXPECT_EQ(this->world_.takeLines(), (Lines{"getCacheVideoDataPath() - ERROR: Passed file url parameter is nil",
                                             "getCacheVideoDataPath() - ERROR: Passed file url parameter is nil"}));
  EXPECT_EQ(this->world_.names(""), Lines{});
}

TYPED_TEST_P(CachePaths, ASavedNameIsTrustedAsItStands) {
  this->world_.putFolder("TavloCache");
  this->world_.putFolder("TavloCache/sub");
  this->world_.put("TavloCache/sub/ clip\n.mp4", "video");

  EXPECT_EQ(TavloUtility::getCacheVideoPathOfSavedInDB("sub/ clip\n.mp4"), this->cached("sub/ clip\n.mp4"));

  EXPECT_EQ(this->world_.takeLines(), (Lines{"Cached directory path : DOCUMENTS/TavloCache/sub/ clip\n.mp4"}));
}

TYPED_TEST_P(CachePaths, AFolderOfASavedNameExists) {
  this->world_.putFolder("TavloCache");
  this->world_.putFolder("TavloCache/sub");

  EXPECT_EQ(TavloUtility::getCacheVideoPathOfSavedInDB("sub"), this->cached("sub"));
}

TYPED_TEST_P(CachePaths, AMissingSavedNameIsToldAfterItsPath) {
  this->world_.putFolder("TavloCache");

  EXPECT_EQ(TavloUtility::getCacheVideoPathOfSavedInDB("gone.mp4"), std::nullopt);

  EXPECT_EQ(this->world_.takeLines(),
            (Lines{"Cached directory path : DOCUMENTS/TavloCache/gone.mp4",
                   "getCacheVideoPathOfSavedInDB() - ERROR: Cache Video Data  does not exist"}));
}

TYPED_TEST_P(CachePaths, AnAbsentOrEmptySavedNameTouchesNoFile) {
  EXPECT_EQ(TavloUtility::getCacheVideoPathOfSavedInDB(std::nullopt), std::nullopt);
  EXPECT_EQ(TavloUtility::getCacheVideoPathOfSavedInDB(""), std::nullopt);

  EXPECT_EQ(this->world_.takeLines(),
            (Lines{"getCacheVideoPathOfSavedInDB() - ERROR: Passed file url parameter is nil",
                   "getCacheVideoPathOfSavedInDB() - ERROR: Passed file url parameter is nil"}));
  EXPECT_EQ(this->world_.names(""), Lines{});
}

TYPED_TEST_P(CachePaths, ANameWithANulIsNoOtherFile) {
  this->world_.putFolder("TavloCache");
  this->world_.put("TavloCache/a", "a");
  const std::string name("a\0b", 3);

  EXPECT_EQ(TavloUtility::getCacheVideoPathOfSavedInDB(name), std::nullopt);

  EXPECT_FALSE(TavloUtility::deleteCachedVideo(this->world_.place("TavloCache/" + name)));
  EXPECT_EQ(this->world_.names("TavloCache"), (Lines{"a"}));
}

REGISTER_TYPED_TEST_SUITE_P(CachePaths, TheFirstCallMakesTheDirectory, LaterCallsFindTheDirectory,
                            ADirectoryDeletedBetweenTwoCallsIsMadeAnew, APlainFileOfItsNameIsReplacedByADirectory,
                            TheNameIsJoinedUnchanged, EachUrlHasItsName,
                            AVideoIsFoundUnderTheDigestAndTheExtensionOfItsUrl, AMissingVideoIsToldAfterItsPath,
                            AnAbsentOrEmptyUrlTouchesNoFile, ASavedNameIsTrustedAsItStands, AFolderOfASavedNameExists,
                            AMissingSavedNameIsToldAfterItsPath, AnAbsentOrEmptySavedNameTouchesNoFile,
                            ANameWithANulIsNoOtherFile);

}  // namespace tavlo::test
