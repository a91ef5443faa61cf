#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <algorithm>
#include <random>

#include "common/Md5.h"
#include "tests/support/CaseName.h"

namespace tavlo {
namespace {

// The second implementation.
Md5Digest opensslDigest(const std::string& bytes) {
  Md5Digest digest{};
  unsigned size = 0;
  EXPECT_EQ(EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, EVP_md5(), nullptr), 1);
  EXPECT_EQ(size, digest.size());
  return digest;
}

std::string randomBytes(std::mt19937_64& random, std::size_t size) {
  std::string bytes(size, '\0');
  std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random() & 0xFFU); });
  return bytes;
}

struct Case {
  const char* name;
  const char* text;
  const char* digest;
};

class Rfc1321 : public testing::TestWithParam<Case> {};

TEST_P(Rfc1321, SuiteHolds) {
  const std::string digest = hexadecimal(md5Digest(GetParam().text));

  EXPECT_EQ(digest, GetParam().digest);
}

INSTANTIATE_TEST_SUITE_P(
    Test, Rfc1321,
    testing::Values(Case{"Empty", "", "d41d8cd98f00b204e9800998ecf8427e"},
                    Case{"OneLetter", "a", "0cc175b9c0f1b6a831c399e269772661"},
                    Case{"Abc", "abc", "900150983cd24fb0d6963f7d28e17f72"},
                    Case{"MessageDigest", "message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
                    Case{"Alphabet", "abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
                    Case{"Alphanumeric", "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
                         "d174ab98d277d9f5a5611c2c9f419d9f"},
                    Case{"EightyDigits",
                         "12345678901234567890123456789012345678901234567890123456789012345678901234567890",
                         "57edf4a22be3c955ac49da2e2107b67a"}),
    test::kCaseName);

TEST(Md5Test, DigitsAreAppendedToWhatIsThereAndEndAtTheFirstNul) {
  std::string name = "a/";

  appendMd5OfText(name, std::string_view("abc\0def", 7));

  EXPECT_EQ(name, "a/900150983cd24fb0d6963f7d28e17f72");
}

TEST(Md5Test, AgreesWithASecondImplementationOnEveryLengthTo1025) {
  std::mt19937_64 random(1321);
  for (std::size_t size = 0; size <= 1025; ++size) {
    const std::string bytes = randomBytes(random, size);
    ASSERT_EQ(md5Digest(bytes), opensslDigest(bytes)) << "length " << size;
  }
}

TEST(Md5Test, AgreesWithASecondImplementationOn100000RandomTexts) {
  constexpr unsigned kSeed = 20260101;
  std::mt19937_64 random(kSeed);
  for (int i = 0; i < 100000; ++i) {
    const std::string bytes = randomBytes(random, random() % 200);
    ASSERT_EQ(md5Digest(bytes), opensslDigest(bytes)) << "seed " << kSeed << ", text " << i;
  }
}

TEST(Md5Test, AgreesOnAMebibyteFromAnUnalignedAddress) {
  std::mt19937_64 random(1);
  const std::string bytes = randomBytes(random, (1U << 20U) + 1);

  EXPECT_EQ(md5Digest(std::string_view(bytes).substr(1)), opensslDigest(bytes.substr(1)));
}

}  // namespace
}  // namespace tavlo
