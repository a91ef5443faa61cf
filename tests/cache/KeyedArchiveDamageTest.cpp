// Sound archives of other programs: cut short at every byte, and with every bit flipped.
#include <gtest/gtest.h>

#include <string>

#include "cache/KeyedArchive.h"
#include "tests/cache/ArchiveBytes.h"
#include "tests/support/Scale.h"

namespace tavlo::keyed_archive {
namespace {

using test::archiveError;
using test::decodeArchive;

// A value that came from anywhere can be written and read again.
void expectValueOrError(const std::string& bytes, const std::string& what) {
  std::optional<Value> value;
  try {
    value = decodeArchive(bytes);
  } catch (const ArchiveError& error) {
    ASSERT_STRNE(error.what(), "") << what;
    return;
  }
  ASSERT_EQ(decode(encode(value)), value) << what;
}

// Each file by name, so that a failure names it and they run side by side.
class KeyedArchiveDamage : public testing::TestWithParam<const char*> {
 protected:
  const std::string file_ = test::archiveFile(GetParam());
};

TEST_P(KeyedArchiveDamage, EveryCutAtTheEndIsRefused) {
  ASSERT_EQ(archiveError(file_), "");

  for (std::size_t length = 0; length < file_.size(); ++length) {
    ASSERT_NE(archiveError(file_.substr(0, length)), "") << length << " of " << file_.size();
  }
}

TEST_P(KeyedArchiveDamage, EveryFlippedBitIsReadOrRefusedAndOneInEightIsWrittenBack) {
  std::string flipped = file_;

  for (std::size_t bit = 0; bit < 8 * file_.size(); ++bit) {
    char& byte = flipped[bit / 8];
    byte = static_cast<char>(byte ^ (1 << (bit % 8)));
    // One bit of each byte is enough for the way back, which takes most of the time.
    if (bit % 8 == bit / 8 % 8) {
      expectValueOrError(flipped, "bit " + std::to_string(bit));
    } else {
      static_cast<void>(archiveError(flipped));
    }
    byte = file_[bit / 8];
  }
  test::reached("T9b", std::to_string(file_.size()) + " bytes of archives cut at each, each of their bits flipped");
}

INSTANTIATE_TEST_SUITE_P(Of, KeyedArchiveDamage,
                         testing::Values("desktop_custom_list", "desktop_dates", "desktop_five_records", "desktop_sets",
                                         "desktop_urls", "device_custom_list", "device_empty_list",
                                         "device_five_records", "device_nested", "device_one_record",
                                         "device_root_string", "device_shared", "device_types"),
                         [](const auto& file) { return std::string(file.param); });

}  // namespace
}  // namespace tavlo::keyed_archive
