// Under which name a video is looked for: the digest of the cleaned URL, the extension of the raw one.
#include <gtest/gtest.h>

#include "TavloUtility.h"
#include "tests/support/CachePlatform.h"
#include "tests/support/CaseName.h"
#include "tests/support/RecordingPlatform.h"

namespace tavlo::test {
namespace {

struct Case {
  const char* name;
  const char* url;
  const char* fileName;
};

class VideoName : public testing::TestWithParam<Case> {};

TEST_P(VideoName, IsThis) {
  const InstalledPlatform<CachePlatform> platform;
  platform->putFolder("TavloCache");
  platform->putFile("TavloCache/" + std::string(GetParam().fileName), "video");

  const Text path = TavloUtility::getCacheVideoDataPath(GetParam().url);

  EXPECT_EQ(path, "/app/Documents/TavloCache/" + std::string(GetParam().fileName));
}

INSTANTIATE_TEST_SUITE_P(
    Urls, VideoName,
    testing::Values(
        Case{"Plain", "http://h/v/a.mp4", "a68d4b2f3ac163441bebacaf205897bb.mp4"},
        Case{"OneQuery", "http://h/v/a.mp4?x=1", "30063746515273c9037f6331cb074885.mp4"},
        Case{"AnotherQuery", "http://h/v/a.mp4?x=2", "39af86037e0e4854566e94cb164a4cd9.mp4"},
        Case{"NewlineInside", "http://h/v\n/a.mp4", "a68d4b2f3ac163441bebacaf205897bb.(null)"},
        Case{"NewlineInsideAndBlanksAround", " \thttp://h/v/a\n.mp4 ", "a68d4b2f3ac163441bebacaf205897bb.(null)"},
        Case{"NewlineAtTheEnd", "http://h/v/a.mp4\n", "a68d4b2f3ac163441bebacaf205897bb.(null)"},
        Case{"BlankAtTheEnd", "http://h/v/a.mp4 ", "a68d4b2f3ac163441bebacaf205897bb.(null)"},
        Case{"InnerBlankStays", "http://h/a b.mp4", "d24a883da458cfbe3073a8c1c3154e24.(null)"},
        Case{"NoExtension", "http://h/clip", "49984795b1fae0ed2ccde2c2649eaf64."},
        Case{"EmptyExtension", "http://h/v/a.", "d57485866faac659c132219f60b86116."},
        Case{"OnlyBlanks", " \n ", "d41d8cd98f00b204e9800998ecf8427e.(null)"},
        Case{"ByteOrderMarkStays", "\xEF\xBB\xBFhttp://h/a.mp4", "6c84aa9b7150104f864a88d7f7cd5d6c.(null)"},
        Case{"ZeroWidthSpaceIsNoBlank", "http://h/a.mp4\xE2\x80\x8B", "5ab1c6d8214cf2bf79330cc9ca34166f.(null)"}),
    kCaseName);

}  // namespace
}  // namespace tavlo::test
