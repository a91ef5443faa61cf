// Paths as URLs. How they are joined is held by the tests of the cache directory.
#include <gtest/gtest.h>

#include <string>

#include "common/Path.h"
#include "tests/support/CaseName.h"

namespace tavlo {
namespace {

struct PathCase {
  const char* name;
  Text path;
  Text url;
};

class FileUrl : public testing::TestWithParam<PathCase> {};

TEST_P(FileUrl, IsThePathPercentEncoded) { EXPECT_EQ(fileUrl(GetParam().path), GetParam().url); }

INSTANTIATE_TEST_SUITE_P(
    Paths, FileUrl,
    testing::Values(PathCase{"Plain", "/a/b.txt", "file:///a/b.txt"}, PathCase{"Root", "/", "file:///"},
                    PathCase{"Directory", "/a/b/", "file:///a/b/"},
                    PathCase{"Kept", "/AZaz09!$&'()*+,-./:=@_~", "file:///AZaz09!$&'()*+,-./:=@_~"},
                    PathCase{"Encoded", "/ \"#%;<>?[\\]^`{|}",
                             "file:///%20%22%23%25%3B%3C%3E%3F%5B%5C%5D%5E%60%7B%7C%7D"},
                    PathCase{"Controls", "/\x01\n\x7F", "file:///%01%0A%7F"},
                    PathCase{"Utf8", "/Ä/日", "file:///%C3%84/%E6%97%A5"}, PathCase{"NotUtf8", "/\xFF", "file:///%FF"},
                    PathCase{"Absent", std::nullopt, std::nullopt}, PathCase{"Empty", "", std::nullopt},
                    PathCase{"Relative", "a/b", std::nullopt}, PathCase{"Nul", std::string("/a\0b", 4), std::nullopt}),
    test::kCaseName);

}  // namespace
}  // namespace tavlo
