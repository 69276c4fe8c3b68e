// Values of the maximum depth on a stack as small as the smallest of the platforms' threads.
#include <gtest/gtest.h>
#include <pthread.h>
#include <string>

#include "kit/value/JSONText.h"
#include "kit/value/Marshal.h"

namespace quorin {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t stackSize = 4 * 1024 * 1024;  // the checks need room of their own
#else
constexpr std::size_t stackSize = 512 * 1024;
#endif

void* convertDeepestValue(void*) {
  std::string text;
  for (std::size_t i = 0; i < JSONValue::maximumDepth; ++i) text += i % 2 ? "[" : "{\"a\":";
  text += "1";
  for (std::size_t i = JSONValue::maximumDepth; i > 0; --i) text += i % 2 ? "}" : "]";
  const ParsedJSON parsed = parseJSON(text);
  EXPECT_TRUE(parsed) << parsed.error;
  if (!parsed) return nullptr;
  const JSONValue copy = *parsed.value;
  EXPECT_TRUE(copy == *parsed.value);
  const AppleEventDescriptor descriptor = Marshal::toDescriptor(copy);
  const AppleEventDescriptor copyOfDescriptor = descriptor;
  EXPECT_TRUE(copyOfDescriptor == descriptor);
  EXPECT_EQ(Marshal::encode(Marshal::fromDescriptor(copyOfDescriptor)), text);
  return nullptr;
}

TEST(Depth, FitsASmallStack) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, stackSize), 0);
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, convertDeepestValue, nullptr), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

}  // namespace
}  // namespace quorin
