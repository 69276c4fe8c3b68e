// Texts, values and events on their way between the two worlds, one by one.
#include <gmock/gmock.h>

#import "app/macos/AppleScriptRunner.h"
#import "app/macos/Descriptors.h"
#include "app/macos/MacBundle.h"
#include "app/macos/MacSystem.h"
#import "app/macos/ObjectValue.h"
#import "app/macos/Text.h"
#include "kit/value/CallTerms.h"
#include "tests/macos/runtime/appkit/Hands.h"
#include "tests/macos/runtime/foundation/Bundle.h"
#import "tests/macos/runtime/foundation/Descriptor.h"

// A dictionary whose one key is a number.
@interface QXDictionaryByNumber : NSDictionary
@end

@implementation QXDictionaryByNumber {
  NSNumber* _key;
}

- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)room {
  if (state->state == 1) return 0;
  _key = [NSNumber numberWithInt:1];
  buffer[0] = _key;
  state->state = 1;
  state->itemsPtr = buffer;
  state->mutationsPtr = &state->extra[0];
  return 1;
}

@end

namespace quorin {
namespace {

using Kind = AnyValue::Kind;

TEST(Text, KeepsEveryCharacter) {
  const std::string all("a\0b\xc3\xa9\n", 6);
  EXPECT_EQ(fromNSString(toNSString(all)), all);
  EXPECT_EQ(fromNSString(toNSString("")), "");
  EXPECT_EQ(fromNSString(nil), "");
  EXPECT_EQ(fromNSString(toNSString("\xff")), "") << "no UTF-8";
  EXPECT_EQ(fromFileURL(toFileURL("/tmp/a b#c%20.txt")), "/tmp/a b#c%20.txt");
}

TEST(ObjectValue, KnowsEachKind) {
  EXPECT_EQ(ObjectValue(nil).kind(), Kind::absent);
  EXPECT_EQ(ObjectValue([NSNull null]).kind(), Kind::null);
  EXPECT_EQ(ObjectValue([NSNumber numberWithBool:YES]).kind(), Kind::boolean);
  EXPECT_EQ(ObjectValue([NSNumber numberWithInt:1]).kind(), Kind::number);
  EXPECT_EQ(ObjectValue(@"1").kind(), Kind::text);
  EXPECT_EQ(ObjectValue(@[ @"1" ]).kind(), Kind::list);
  EXPECT_EQ(ObjectValue(@{@"a" : @"1"}).kind(), Kind::dictionary);
  EXPECT_EQ(ObjectValue([[NSObject alloc] init]).kind(), Kind::other);
  EXPECT_EQ(ObjectValue([[QXDictionaryByNumber alloc] init]).kind(), Kind::other)
      << "its keys are no texts";
}

// What addresses an event is none of its parameters.
TEST(Descriptors, GiveAnEventItsPlaces) {
  const AppleEvent event{'abcd',
                         'efgh',
                         {{'prm1', AppleEventDescriptor::text("one")}},
                         {{'atr1', AppleEventDescriptor::integer(2)}}};
  const AppleEvent made = plainEvent(toScriptEvent(event));
  EXPECT_EQ(made.eventClass, event.eventClass);
  EXPECT_EQ(made.eventID, event.eventID);
  EXPECT_EQ(made.parameters, event.parameters);
  EXPECT_EQ(made.attributes, event.attributes);
}

TEST(Descriptors, KeepEachFieldUnderItsKeyword) {
  const auto record = AppleEventDescriptor::record(
      {{'one ', AppleEventDescriptor::integer(1)}, {'two ', AppleEventDescriptor::text("2")}});
  EXPECT_EQ(fromEventDescriptor(toEventDescriptor(record)), record);
}

TEST(Descriptors, TellCodesOfEnumerationsFromTypes) {
  for (const auto& value :
       {AppleEventDescriptor::enumerator('yes '), AppleEventDescriptor::typeCode('yes ')})
    EXPECT_EQ(fromEventDescriptor(toEventDescriptor(value)), value);
}

TEST(MacBundle, GivesTextsAlone) {
  mainBundle().numbers["QXNumber"] = 7;
  EXPECT_EQ(MacBundle().infoString("QXNumber"), "");
  mainBundle().numbers.clear();
}

TEST(MacVersions, NameTheSystemAndTheSpreadsheet) {
  const SystemVersions all = macVersions();
  EXPECT_EQ(all.system, "macOS");
  EXPECT_EQ(all.spreadsheet, "Excel");
}

// The system would ask the user where it is.
TEST(AppleScriptRunner, CompilesNothingWithoutExcel) {
  installExcel(false);
  const auto error = AppleScriptRunner().compile("on a9()\nreturn 1\nend a9\n");
  installExcel(true);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, -10814);
  EXPECT_EQ(error->message, "Microsoft Excel is not installed");
}

}  // namespace
}  // namespace quorin
