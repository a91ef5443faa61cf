#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/ContentKind.h"
#include "tests/support/CaseName.h"
#include "tests/support/Python.h"

namespace tavlo::cli {
namespace {

struct KindCase {
  const char* name;
  std::string bytes;
  const char* kind;
};

void PrintTo(const KindCase& row, std::ostream* stream) { *stream << row.name; }

std::string hex(const std::string& digits) { return tavlo::test::fromHex(digits); }

// The first two packets' marks of a transport stream, with this much in front of each packet.
std::string packets(std::size_t before) {
  return std::string(before, '\0') + "G" + std::string(187 + before, '\0') + "G";
}

class ContentKindTest : public testing::TestWithParam<KindCase> {};

TEST_P(ContentKindTest, IsToldByTheBeginning) { EXPECT_EQ(contentKind(GetParam().bytes), GetParam().kind); }

INSTANTIATE_TEST_SUITE_P(Rows, ContentKindTest,
                         testing::ValuesIn(std::vector<KindCase>{
                             {"Empty", "", "empty"},
                             {"Png", hex("89504e470d0a1a0a0000"), "PNG image"},
                             {"PngCutShort", hex("89504e470d0a"), "other"},
                             {"Jpeg", hex("ffd8ffe0"), "JPEG image"},
                             {"Gif87", "GIF87a....", "GIF image"},
                             {"Gif89", "GIF89a", "GIF image"},
                             {"GifOfNoVersion", "GIF90a", "other"},
                             {"WebP", "RIFF....WEBPVP8 ", "WebP image"},
                             {"OtherRiff", "RIFF....WAVEfmt ", "other"},
                             {"Bmp", hex("424d4600000000000000360000"), "BMP image"},
                             {"TextThatBeginsLikeBmp", "BMW cars are here", "other"},
                             {"Avif", hex("0000001c") + "ftypavif", "AVIF image"},
                             {"Heic", hex("00000018") + "ftypheic", "HEIC image"},
                             {"HeicByItsOtherBrand", hex("00000018") + "ftypmif1", "HEIC image"},
                             {"Mp4", hex("00000020") + "ftypisom", "MP4 video"},
                             {"QuickTime", hex("00000014") + "ftypqt  ", "QuickTime video"},
                             {"QuickTimeWithoutType", hex("00000014") + "moov", "QuickTime video"},
                             {"WebM", hex("1a45dfa39f4286810142f7810142f2810442f381084282847765626d"), "WebM video"},
                             {"Matroska", hex("1a45dfa3a34286810142f7810142f2810442f381084282886d6174726f736b61"),
                              "Matroska video"},
                             {"MpegTs", packets(0), "MPEG-TS video"},
                             {"MpegTsWithTimes", packets(4), "MPEG-TS video"},
                             {"OneMpegTsMark", "G" + std::string(300, '\0'), "other"},
                             {"Hls", "#EXTM3U\n#EXT-X-VERSION:3\n", "HLS playlist"},
                             {"List", "bplist00....", "list"},
                             {"Svg", "<svg xmlns='http://www.w3.org/2000/svg'/>", "SVG image"},
                             {"SvgWithAPrologue", "<?xml version='1.0'?>\n<!-- a -->\n<svg/>", "SVG image"},
                             {"Html", "\n <!DOCTYPE HTML><title>404</title>", "HTML page"},
                             {"HtmlWithAByteOrderMark", "\xEF\xBB\xBF<HTML>", "HTML page"},
                             {"HtmlOfAComment", "<!-- error --><html>", "HTML page"},
                             {"XmlList", "<?xml version='1.0'?><!DOCTYPE plist><plist/>", "XML property list"},
                             {"JsonObject", "{\"error\": 404}", "JSON text"},
                             {"JsonList", " [1]", "JSON text"},
                             {"EmptyJsonObject", "{ }", "JSON text"},
                             {"Braces", "{braces}", "other"},
                             {"Words", "just words", "other"},
                             {"OtherXml", "<?xml version='1.0'?><a/>", "other"},
                         }),
                         tavlo::test::kCaseName);

}  // namespace
}  // namespace tavlo::cli
