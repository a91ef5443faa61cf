// Headers, trailers and tables that no writer writes: each file ends in an error that says where.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/PropertyList.h"
#include "tests/common/RawPropertyList.h"

namespace tavlo::property_list {
namespace {

using test::bigEndianBytes;
using test::errorOf;
using test::expectErrors;
using test::kAllOnes;
using test::kTwoTo31;
using test::kTwoTo61;
using test::kTwoTo62;
using test::kTwoTo63;
using test::RawPropertyList;
using test::soundList;

TEST(PropertyListHostile, OtherFormatsAreRefusedByName) {
  const char* const xml = "an XML property list; only the binary form is read";
  const char* const other = "no property list: it does not begin with \"bplist\"";
  const char* const version = "byte 6: a binary property list of another version than 00";
  const auto withHeader = [](const char* header) {
    RawPropertyList list = soundList();
    list.header = header;
    return list.bytes();
  };

  expectErrors({
      {"nothing", "", other},
      {"one blank", " ", other},
      {"text", "Hello, world", other},
      {"zeros", std::string(100, '\0'), other},
      {"XML declaration", "<?xml version=\"1.0\"?><plist/>", xml},
      {"document type", "<!DOCTYPE plist><plist/>", xml},
      {"root element", "<plist version=\"1.0\"/>", xml},
      {"XML behind blanks", " \t\r\n<?xml", xml},
      {"XML behind a byte order mark", "\xEF\xBB\xBF<?xml", xml},
      {"XML behind both", "\xEF\xBB\xBF\n<plist", xml},
      {"byte order mark alone", "\xEF\xBB\xBF", other},
      {"some other XML", "<html>", other},
      {"upper case", withHeader("BPLIST00"), other},
      {"version 01", withHeader("bplist01"), version},
      {"version 10", withHeader("bplist10"), version},
      {"version 15", withHeader("bplist15"), version},
      {"no digits", withHeader("bplist\xFF\xFF"), version},
      {"blank before the header", " " + soundList().bytes(), other},
  });
}

TEST(PropertyListHostile, EveryShorterLengthIsRefused) {
  const std::string file = soundList().bytes();
  ASSERT_EQ(file.size(), 54U);
  ASSERT_EQ(errorOf(file), "");

  for (std::size_t length = 0; length <= 48; ++length) {
    const std::string error = errorOf(file.substr(0, length));

    if (length < 6) {
      EXPECT_EQ(error, "no property list: it does not begin with \"bplist\"") << length;
    } else if (length < 40) {
      EXPECT_EQ(error, std::to_string(length) + " bytes are too few for a header and a trailer");
    } else {
      EXPECT_TRUE(error.starts_with("trailer at byte " + std::to_string(length - 32))) << error;
    }
  }
}

TEST(PropertyListHostile, LengthsOfAnyOneByteAreNoList) {
  for (const char filler : {'\0', ' ', 'b', '<', '\xFF'}) {
    for (std::size_t length = 0; length <= 48; ++length) {
      EXPECT_EQ(errorOf(std::string(length, filler)), "no property list: it does not begin with \"bplist\"");
      EXPECT_NE(errorOf("bplist00" + std::string(length, filler)), "");
    }
  }
}

TEST(PropertyListHostile, SizesInTheTrailerAreOneToEight) {
  for (unsigned size = 0; size <= 255; ++size) {
    RawPropertyList offsets = soundList();
    offsets.saidOffsetSize = size;
    RawPropertyList references = soundList();
    references.saidReferenceSize = size;

    if (size < 1 || size > 8) {
      EXPECT_EQ(errorOf(offsets), "trailer at byte 22: offset size " + std::to_string(size));
      EXPECT_EQ(errorOf(references), "trailer at byte 22: reference size " + std::to_string(size));
    } else {
      EXPECT_EQ(errorOf(offsets) == "", size == 1) << size;
      EXPECT_EQ(errorOf(references) == "", size == 1) << size;
    }
  }
}

TEST(PropertyListHostile, CountsAreBoundedByTheInput) {
  struct Case {
    std::uint64_t count;
    std::size_t offsetSize;
    const char* error;
  };
  const std::vector<Case> cases = {
      {0, 1, "trailer at byte 22: top object 0 of 0"},
      {1, 1, "object 0 at byte 8: it refers to object 1"},
      {2, 1, "object 0 at byte 8: it refers to object 2"},
      {4, 1, "trailer at byte 22: no room for 4 offsets"},
      {kTwoTo31, 1, "trailer at byte 22: no room for 2147483648 offsets"},
      {kTwoTo63, 1, "trailer at byte 22: no room for 9223372036854775808 offsets"},
      {kAllOnes, 1, "trailer at byte 22: no room for 18446744073709551615 offsets"},
      {kTwoTo63, 2, "trailer at byte 25: no room for 9223372036854775808 offsets"},
      {kTwoTo63 + 3, 2, "trailer at byte 25: no room for 9223372036854775811 offsets"},
      {kTwoTo62 + 3, 4, "trailer at byte 31: no room for 4611686018427387907 offsets"},
      {kTwoTo61 - 1, 8, "trailer at byte 43: no room for 2305843009213693951 offsets"},
      {kTwoTo61, 8, "trailer at byte 43: no room for 2305843009213693952 offsets"},
      {kTwoTo61 + 1, 8, "trailer at byte 43: no room for 2305843009213693953 offsets"},
      {kTwoTo61 + 3, 8, "trailer at byte 43: no room for 2305843009213693955 offsets"},
      {kAllOnes, 8, "trailer at byte 43: no room for 18446744073709551615 offsets"},
  };

  for (const auto& [count, offsetSize, error] : cases) {
    RawPropertyList list = soundList();
    list.offsetSize = offsetSize;
    list.saidCount = count;

    EXPECT_EQ(errorOf(list), error);
  }
}

TEST(PropertyListHostile, TableLiesBetweenHeaderAndTrailer) {
  struct Case {
    std::uint64_t table;
    const char* error;
  };
  const std::vector<Case> cases = {
      {0, "trailer at byte 22: offset table at byte 0"},
      {7, "trailer at byte 22: offset table at byte 7"},
      {20, "trailer at byte 22: no room for 3 offsets"},
      {22, "trailer at byte 22: no room for 3 offsets"},
      {23, "trailer at byte 22: offset table at byte 23"},
      {54, "trailer at byte 22: offset table at byte 54"},
      {55, "trailer at byte 22: offset table at byte 55"},
      {kTwoTo63, "trailer at byte 22: offset table at byte 9223372036854775808"},
      {kAllOnes - 2, "trailer at byte 22: offset table at byte 18446744073709551613"},
      {kAllOnes, "trailer at byte 22: offset table at byte 18446744073709551615"},
  };

  for (const auto& [table, error] : cases) {
    RawPropertyList list = soundList();
    list.saidTable = table;

    EXPECT_EQ(errorOf(list), error);
  }
}

TEST(PropertyListHostile, TopObjectIsOneOfThem) {
  for (const std::uint64_t top : {std::uint64_t{3}, std::uint64_t{4}, kTwoTo63, kAllOnes}) {
    RawPropertyList list = soundList();
    list.saidTop = top;

    EXPECT_EQ(errorOf(list), "trailer at byte 22: top object " + std::to_string(top) + " of 3");
  }
}

TEST(PropertyListHostile, ObjectsBeginBetweenHeaderAndTrailerButNotInTheTable) {
  for (const std::uint64_t offset : {std::uint64_t{0}, std::uint64_t{7}, std::uint64_t{19}, std::uint64_t{42},
                                     std::uint64_t{43}, std::uint64_t{44}, kTwoTo63, kAllOnes}) {
    RawPropertyList list = soundList();
    list.offsetSize = 8;
    list.offsets[1] = offset;

    EXPECT_EQ(errorOf(list), "object 1: no object begins at byte " + std::to_string(offset));
  }
}

TEST(PropertyListHostile, ReferencesAreToObjects) {
  for (const std::uint64_t reference : {std::uint64_t{3}, std::uint64_t{255}, kTwoTo63, kAllOnes}) {
    RawPropertyList list = soundList();
    list.referenceSize = 8;
    list.objects[0] = "\xA1" + bigEndianBytes(reference, 8);

    EXPECT_EQ(errorOf(list), "object 0 at byte 8: it refers to object " + std::to_string(reference));
  }
}

}  // namespace
}  // namespace tavlo::property_list
