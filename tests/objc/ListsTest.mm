// The archived lists, written by either side and read by the other, and the order of the app's own records.
#include <gmock/gmock.h>

#include <string>

#include "cache/KeyedArchive.h"
#import "platform/apple/ExceptionGuard.h"
#import "platform/apple/Unarchiver.h"
#include "tests/objc/AppTest.h"
#include "tests/support/TemporaryFolder.h"

// A record of the app's own class.
@interface AdRecord : NSObject <NSCoding> {
 @public
  NSString* name;
  id date;
}
+ (id)recordNamed:(NSString*)aName date:(id)aDate;
- (NSString*)name;
- (id)startdate;
@end

@implementation AdRecord
+ (id)recordNamed:(NSString*)aName date:(id)aDate {
  AdRecord* const record = [[[AdRecord alloc] init] autorelease];
  record->name = [aName retain];
  record->date = [aDate retain];
  return record;
}
- (void)dealloc {
  [name release];
  [date release];
  [super dealloc];
}
- (NSString*)name {
  return name;
}
- (id)startdate {
  return date;
}
- (void)encodeWithCoder:(NSCoder*)coder {
  [coder encodeObject:name forKey:@"name"];
  [coder encodeObject:date forKey:@"startdate"];
}
- (id)initWithCoder:(NSCoder*)coder {
  name = [[coder decodeObjectForKey:@"name"] retain];
  date = [[coder decodeObjectForKey:@"startdate"] retain];
  return self;
}
@end

namespace tavlo::test {
namespace {

using Component = tavlo::TavloUtility;

class ObjCLists : public AppTest {
 protected:
  ObjCLists() {
    static_cast<void>([::TavloUtility getDocumentDirectoryPath:@""]);
    static_cast<void>(calls().take());
  }

  static NSString* file(const char* name) { return string((cache() / name).string()); }

  static NSDictionary* record(NSString* name, id date) {
    return [NSDictionary dictionaryWithObjectsAndKeys:name, @"name", date, @"startdate", nil];
  }
};

NSArray* records() {
  id const map =
      [NSDictionary dictionaryWithObjectsAndKeys:[NSNumber numberWithInt:7], @"id", [NSNumber numberWithBool:YES],
                                                 @"on", [NSNumber numberWithDouble:0.5], @"share",
                                                 [NSData dataWithBytes:"\xFF" length:1], @"data", nil];
  return [NSArray arrayWithObjects:map, map, @"text", apple_platform::stringOf("\xF0\x9F\x98\x80 \xE2\x82\xAC"),
                                   [NSDate dateWithTimeIntervalSinceReferenceDate:757382400],
                                   [NSSet setWithObject:@"one"], [NSArray array], nil];
}

TEST_F(ObjCLists, ArchivesOfThePlatformAreReadByBothFaces) {
  ASSERT_TRUE([NSKeyedArchiver archiveRootObject:records() toFile:file("VideoListAPI")]);

  EXPECT_TRUE([[::TavloUtility getCachedVideoList:YES] isEqual:records()]);
  EXPECT_EQ(Component::getCachedVideoList(true), apple_platform::valueOf(records()));
}

TEST_F(ObjCLists, ArchivesOfTheComponentAreReadByThePlatform) {
  const Value list = *apple_platform::valueOf(records());
  writeFile(cache() / "InterstitialListAPI", keyed_archive::encode(list));

  EXPECT_TRUE([[::TavloUtility getCachedVideoList:NO] isEqual:records()]);
  EXPECT_TRUE([apple_platform::unarchived(keyed_archive::encode(list)) isEqual:records()]);
}

TEST_F(ObjCLists, BothReadersOfArchivesAgree) {
  ASSERT_TRUE([NSKeyedArchiver archiveRootObject:records() toFile:file("VideoListAPI")]);
  const std::string bytes = readFile(cache() / "VideoListAPI");

  EXPECT_EQ(apple_platform::valueOf(apple_platform::unarchived(bytes)), keyed_archive::decode(bytes));
}

TEST_F(ObjCLists, WhatTheUnarchiverCannotReadIsNil) {
  EXPECT_EQ(apple_platform::unarchived(""), nil);
  EXPECT_EQ(apple_platform::unarchived("bplist00 and nothing more"), nil);
  EXPECT_EQ(
      apple_platform::unarchived(keyed_archive::encode(Value::object({.className = "NoSuchClass", .fields = {}}))),
      nil);
}

TEST_F(ObjCLists, ObjectsOfTheAppsOwnClassesAreMade) {
  NSArray* const list = [NSArray arrayWithObjects:[AdRecord recordNamed:@"ad-1" date:[NSNumber numberWithInt:5]], nil];
  ASSERT_TRUE([NSKeyedArchiver archiveRootObject:list toFile:file("VideoListAPI")]);

  NSArray* const read = [::TavloUtility getCachedVideoList:YES];

  ASSERT_EQ([read count], 1U);
  ASSERT_TRUE([[read objectAtIndex:0] isKindOfClass:[AdRecord class]]);
  EXPECT_EQ(text([[read objectAtIndex:0] name]), "ad-1");
}

TEST_F(ObjCLists, ObjectsOfClassesThatAreNotThereShowTheirFields) {
  const Value object = Value::object({.className = "NoSuchClass", .fields = {{Value("id"), Value("ad-1")}}});
  writeFile(cache() / "VideoListAPI", keyed_archive::encode(Value::list({object})));

  NSArray* const read = [::TavloUtility getCachedVideoList:YES];

  NSDictionary* const fields =
      [NSDictionary dictionaryWithObjectsAndKeys:@"NoSuchClass", @"$class", @"ad-1", @"id", nil];
  EXPECT_TRUE([read isEqual:[NSArray arrayWithObject:fields]]);
}

TEST_F(ObjCLists, BytesThatAreNoArchiveRaise) {
  writeFile(cache() / "VideoListAPI", "no archive");

  NSException* const raised =
      apple_platform::exceptionRaisedBy([] { static_cast<void>([::TavloUtility getCachedVideoList:YES]); });

  EXPECT_EQ(text([raised name]), text(NSInvalidArgumentException));
  EXPECT_THAT(*text([raised reason]), testing::StartsWith((cache() / "VideoListAPI").string() + ": "));
}

TEST_F(ObjCLists, AMissingListClearsTheCache) {
  writeFile(cache() / "InterstitialListAPI", "x");
  writeFile(cache() / "TavloLogFile.txt", "log");

  EXPECT_EQ([::TavloUtility getCachedVideoList:YES], nil);

  EXPECT_FALSE(std::filesystem::exists(cache() / "InterstitialListAPI"));
  EXPECT_TRUE(std::filesystem::exists(cache() / "TavloLogFile.txt"));
  EXPECT_THAT(calls().take(),
              testing::ElementsAre("printLog:Cached directory path : " + (cache() / "VideoListAPI").string(),
                                   "printLog:getFileData() - ERROR: This file  does not exist"));
}

TEST_F(ObjCLists, RecordsAreOrderedByTheirDatesAndStayTheSameObjects) {
  NSDictionary* const late = record(@"late", [NSDate dateWithTimeIntervalSinceReferenceDate:20]);
  NSDictionary* const early = record(@"early", [NSDate dateWithTimeIntervalSinceReferenceDate:-1.5]);
  NSDictionary* const none = [NSDictionary dictionaryWithObject:@"none" forKey:@"name"];
  NSArray* const list = [NSArray arrayWithObjects:late, early, none, early, nil];

  NSArray* const sorted = [::TavloUtility sortCacahedVideoDates:list];

  ASSERT_EQ([sorted count], 4U);
  EXPECT_EQ([sorted objectAtIndex:0], none);
  EXPECT_EQ([sorted objectAtIndex:1], early);
  EXPECT_EQ([sorted objectAtIndex:2], early);
  EXPECT_EQ([sorted objectAtIndex:3], late);
  EXPECT_EQ([list objectAtIndex:0], late);
  EXPECT_EQ(apple_platform::valueOf(sorted), Component::sortCacahedVideoDates(apple_platform::valueOf(list)));
}

TEST_F(ObjCLists, RecordsOfTheAppsOwnClassesAreOrdered) {
  id const second = [AdRecord recordNamed:@"b" date:@"2026-02"];
  id const first = [AdRecord recordNamed:@"a" date:@"2026-01"];

  NSArray* const sorted = [::TavloUtility sortCacahedVideoDates:[NSArray arrayWithObjects:second, first, nil]];

  EXPECT_EQ([sorted objectAtIndex:0], first);
  EXPECT_EQ([sorted objectAtIndex:1], second);
}

TEST_F(ObjCLists, WhatIsNoListIsNilAndASetBecomesOne) {
  EXPECT_EQ([::TavloUtility sortCacahedVideoDates:nil], nil);
  EXPECT_EQ([::TavloUtility sortCacahedVideoDates:static_cast<NSArray*>(static_cast<id>(@"text"))], nil);
  EXPECT_EQ([[::TavloUtility sortCacahedVideoDates:[NSArray array]] count], 0U);
  EXPECT_EQ(
      [[::TavloUtility sortCacahedVideoDates:static_cast<NSArray*>(static_cast<id>([NSSet setWithObject:@"a"]))] count],
      1U);
}

}  // namespace
}  // namespace tavlo::test
