#include <gtest/gtest.h>

#include <set>

#include "platform/Platform.h"
#include "request/Contracts.h"
#include "request/Renderer.h"
#include "tests/support/RecordingCollaborators.h"

namespace tavlo {
namespace {

TEST(ContractsTest, EveryKeyStandsOnceInItsContract) {
  for (const Contract& contract : kContracts) {
    std::set<std::string_view> keys;
    for (const Pair& pair : contract.pairs) EXPECT_TRUE(keys.insert(pair.key).second) << pair.key;
  }
}

TEST(ContractsTest, EachTextIsNamedLikeItsReadOperation) {
  EXPECT_EQ(packageTextNamed("applicationId"), PackageText::applicationId);
  EXPECT_EQ(packageTextNamed("getUserAddress"), PackageText::getUserAddress);
  EXPECT_EQ(packageTextNamed("accesskey"), PackageText::accesskey);
  EXPECT_EQ(packageTextNamed("resolution"), std::nullopt);
  EXPECT_EQ(packageTextNamed(""), std::nullopt);
}

TEST(ContractsTest, EachTextIsReadByTheOperationOfItsName) {
  const test::RecordingPackage package;
  for (const PackageTextRead& read : kPackageTextReads) {
    package.reads.clear();

    static_cast<void>((package.*read.read)());

    EXPECT_EQ(package.reads, std::vector<std::string>{std::string(read.name)});
  }
}

TEST(ContractsTest, ExplainingAPairTellsTheRawValueFromWhatIsSent) {
  test::RecordingPackage package;
  package.texts[PackageText::token] = "a b";
  package.texts[PackageText::app_version] = "";
  package.limitedTracking = true;
  const auto explained = [&](std::size_t row) { return explain(kAdRequestContract.pairs[row], &package); };

  EXPECT_EQ(explained(7).raw, "a b");
  EXPECT_EQ(explained(7).sent, "a%20b");
  EXPECT_EQ(explained(2).raw, "");
  EXPECT_EQ(explained(2).sent, "");
  EXPECT_EQ(explained(0).raw, std::nullopt);
  EXPECT_EQ(explained(0).sent, "(null)");
  EXPECT_EQ(explained(6).raw, "4.1.0");
  EXPECT_EQ(explained(9).raw, "1");
  EXPECT_EQ(explained(9).sent, "1");
}

TEST(ContractsTest, ExplainingAPairTellsAnAbsentAnswerOfAnOperation) {
  platform::install(nullptr);
  TavloUniqueUserHandler::install(nullptr);
  const auto explained = [](const Contract& contract, std::size_t row) {
    return explain(contract.pairs[row], nullptr);
  };

  for (const RenderedPair& absent :
       {explained(kInAppContract, 0), explained(kInAppContract, 20), explained(kUserContract, 3)}) {
    EXPECT_EQ(absent.raw, std::nullopt);
    EXPECT_EQ(absent.sent, "(null)");
  }
  EXPECT_EQ(explained(kUserContract, 0).raw, "0");
  EXPECT_EQ(explained(kUserContract, 1).raw, "");
}

TEST(ContractsTest, ExplainingAPairReadsItsSourceOnce) {
  const test::RecordingPackage package;

  static_cast<void>(explain(kAdRequestContract.pairs[0], &package));

  EXPECT_EQ(package.reads, std::vector<std::string>{"applicationId"});
}

}  // namespace
}  // namespace tavlo
