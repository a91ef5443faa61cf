#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "TavloUtility.h"
#include "common/Md5.h"
#include "tests/support/CaseName.h"
#include "tests/support/Python.h"
#include "tests/support/Scale.h"
#include "tests/support/Seed.h"

namespace tavlo {
namespace {

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

// Both the digest of all bytes and, as the operation has it, that of the text before its first NUL.
void expectAgreement(const std::vector<std::string>& inputs) {
  std::string lines;
  for (const std::string& bytes : inputs) lines += test::toHex(bytes) + '\n';
  const auto digests = test::splitLines(test::runOracle("md5.py", {}, lines));

  ASSERT_EQ(digests.size(), inputs.size());
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    const Text ofText = TavloUtility::md5(inputs[i]);
    ASSERT_EQ(hexadecimal(md5Digest(inputs[i])) + ' ' + ofText.value_or("absent"), digests[i]) << "input " << i;
  }
}

TEST(Md5Test, AgreesWithASecondImplementationOnEveryLengthTo1025) {
  std::mt19937_64 random(test::seed());
  std::vector<std::string> inputs;
  for (std::size_t size = 0; size <= 1025; ++size) inputs.push_back(randomBytes(random, size));

  expectAgreement(inputs);
  test::reached("T14 digests", "1026 lengths, from 0 bytes on");
}

TEST(Md5Test, AgreesWithASecondImplementationOnRandomTexts) {
  std::mt19937_64 random(test::seed());
  const int count = test::figure(10'000, 100'000);
  std::vector<std::string> inputs;
  for (int i = 0; i < count; ++i) inputs.push_back(randomBytes(random, static_cast<std::size_t>(random() % 200)));

  expectAgreement(inputs);
  test::reached("T14 digests", std::to_string(count) + " random texts, whole and before their first NUL");
}

TEST(Md5Test, DoesNotMindWhereItsBytesLie) {
  std::mt19937_64 random(test::seed());
  const std::string bytes = randomBytes(random, (1U << 16U) + 16);

  for (std::size_t offset = 0; offset < 16; ++offset) {
    const std::string copy = bytes.substr(offset);
    ASSERT_EQ(md5Digest(std::string_view(bytes).substr(offset)), md5Digest(copy)) << offset;
  }
}

TEST(Md5Test, AMillionLettersHaveTheirKnownDigest) {
  EXPECT_EQ(hexadecimal(md5Digest(std::string(1'000'000, 'a'))), "7707d6ae4e027c70eea2a935c2296f21");
}

}  // namespace
}  // namespace tavlo
