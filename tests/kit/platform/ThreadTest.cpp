#include <gtest/gtest.h>
#include <thread>

#include "kit/platform/Thread.h"

namespace quorin {
namespace {

TEST(ThreadDeathTest, StopsWhenMainThreadWorkRunsElsewhere) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  MainThread::record();
  EXPECT_DEATH(std::thread([] {
                 nameCurrentThread("qx.test");
                 MainThread::require("Panel::show");
               }).join(),
               "Panel::show belongs on the thread \"main\" but was called on \"qx.test\"");
}

TEST(ThreadDeathTest, StopsWhenForbiddenWorkRunsOnTheMainThread) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  MainThread::record();
  EXPECT_DEATH(MainThread::forbid("ExcelThread::call"),
               "ExcelThread::call belongs on any thread but \"main\" and was called on \"main\"");
}

TEST(ThreadDeathTest, NamesBothThreadsOfAnyOwner) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(std::thread([] {
                 nameCurrentThread("stray");
                 stopForWrongThread("Bridge::call", "qx.bridge");
               }).join(),
               "Bridge::call belongs on the thread \"qx.bridge\" but was called on \"stray\"");
}

TEST(Thread, KnowsTheRecordedMainThread) {
  std::thread([] {
    MainThread::record();
    EXPECT_TRUE(MainThread::isCurrent());
    EXPECT_EQ(currentThreadName(), "\"main\"");
    MainThread::require("this");
    std::thread([] {
      EXPECT_FALSE(MainThread::isCurrent());
      MainThread::forbid("this");
    }).join();
  }).join();
  MainThread::record();
  EXPECT_TRUE(MainThread::isCurrent());
}

TEST(Thread, NamesAThreadWithoutNameByItsNumber) {
  std::thread([] { EXPECT_EQ(currentThreadName().rfind("thread ", 0), 0u); }).join();
}

}  // namespace
}  // namespace quorin
