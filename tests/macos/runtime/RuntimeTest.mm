// The runtime itself: that it notices what it is there to notice.
#import <AppKit/AppKit.h>
#include <gtest/gtest.h>
#include <thread>

#include "tests/macos/runtime/Expected.h"
#include "tests/macos/runtime/foundation/Raise.h"
#include "tests/macos/runtime/objc/Census.h"
#include "tests/macos/runtime/objc/Runtime.h"

@interface QXProbe : NSObject
@property(nonatomic, strong, nullable) NSObject* kept;
@property(nonatomic, weak, nullable) NSObject* known;
@property(nonatomic, copy, nullable) int (^work)(int);
- (double)sum:(double)a with:(double)b and:(int)c;
- (NSRect)rect;
@end

@implementation QXProbe
- (double)sum:(double)a with:(double)b and:(int)c {
  return a + b + c;
}
- (NSRect)rect {
  return NSMakeRect(1, 2, 3, 4);
}
@end

namespace quorin {
namespace {

objc::Object* of(id object) {
  return (__bridge objc::Object*)object;
}

TEST(Runtime, PassesNumbersAndStructures) {
  QXProbe* probe = [[QXProbe alloc] init];
  EXPECT_EQ([probe sum:1.5 with:2.25 and:3], 6.75);
  EXPECT_EQ(probe.rect.size.height, 4);
  QXProbe* nothing = nil;
  EXPECT_EQ([nothing sum:1 with:2 and:3], 0);
  EXPECT_EQ(nothing.rect.size.height, 0);
}

TEST(Runtime, ForgetsWeakReferencesWhenTheirObjectGoes) {
  QXProbe* probe = [[QXProbe alloc] init];
  @autoreleasepool {
    NSObject* other = [[NSObject alloc] init];
    probe.known = other;
    EXPECT_EQ(probe.known, other);
  }
  EXPECT_EQ(probe.known, nil);
}

TEST(Runtime, CopiesBlocksWithWhatTheyShare) {
  QXProbe* probe = [[QXProbe alloc] init];
  __block int count = 0;
  probe.work = ^(int by) {
    return count += by;
  };
  EXPECT_EQ(probe.work(2), 2);
  count = 10;
  EXPECT_EQ(probe.work(3), 13);
}

TEST(Runtime, CountsACycleAsLeft) {
  const auto before = objc::census()["QXProbe"];
  QXProbe* probe = [[QXProbe alloc] init];
  probe.kept = probe;
  QXProbe* __weak weak = probe;
  probe = nil;
  EXPECT_EQ(objc::census()["QXProbe"], before + 1);
  QXProbe* found = weak;
  found.kept = nil;
}

TEST(Runtime, CarriesExceptionsThroughFramesOfBothLanguages) {
  expectRaised(1);
  QXProbe* __weak gone = nil;
  bool caught = false;
  @try {
    QXProbe* probe = [[QXProbe alloc] init];
    gone = probe;
    const auto pass = [&] { raise("NSRangeException", "too far"); };
    pass();
  } @catch (NSException* exception) {
    caught = [exception.reason isEqualToString:@"too far"];
  }
  EXPECT_TRUE(caught);
  EXPECT_EQ(gone, nil) << "what the frame held is released";
}

TEST(Runtime, RaisesWhereFoundationRaises) {
  expectRaised(3);
  const auto raises = [](auto work) {
    @try {
      work();
    } @catch (NSException*) {
      return true;
    }
    return false;
  };
  EXPECT_TRUE(raises([] { (void)[[NSArray array] objectAtIndex:0]; }));
  EXPECT_TRUE(raises([] { [[[NSMutableArray alloc] init] addObject:(NSObject* _Nonnull)nil]; }));
  bool elsewhere = false;
  std::thread([&] { elsewhere = raises([] { (void)NSApplication.sharedApplication; }); }).join();
  EXPECT_TRUE(elsewhere);
}

class RuntimeDeathTest : public testing::Test {
 protected:
  RuntimeDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(RuntimeDeathTest, EndsAtAnObjectThatIsReleasedOnceMore) {
  EXPECT_DEATH(
      {
        QXProbe* probe = [[QXProbe alloc] init];
        objc::Object* object = of(probe);
        objc_release(object);
        objc_release(object);
      },
      "a deallocated QXProbe is released once more");
}

TEST_F(RuntimeDeathTest, EndsAtAMessageToAnObjectThatIsGone) {
  EXPECT_DEATH(
      {
        QXProbe* __unsafe_unretained probe = nil;
        @autoreleasepool {
          QXProbe* held = [[QXProbe alloc] init];
          probe = held;
        }
        (void)[probe description];
      },
      "message 'description' to a deallocated QXProbe");
}

TEST_F(RuntimeDeathTest, EndsAtAMessageThatNobodyKnows) {
  EXPECT_DEATH([(id)[[QXProbe alloc] init] terminate:nil],
               "-\\[QXProbe terminate:\\]: unrecognized selector");
}

TEST_F(RuntimeDeathTest, EndsAtAScriptOnTwoThreads) {
  EXPECT_DEATH(
      {
        NSAppleScript* script = [[NSAppleScript alloc] initWithSource:@"return 1"];
        std::thread([script] { [script compileAndReturnError:nil]; }).join();
      },
      "a script is used on another thread");
}

}  // namespace
}  // namespace quorin
