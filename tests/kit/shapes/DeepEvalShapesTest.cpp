#include <gtest/gtest.h>

#include "kit/shapes/DeepEvalShapes.h"

namespace quorin::BridgeShapes {
namespace {

using Object = JSONValue::Object;

TEST(DeepEvalRefusal, LimitsTheEntries) {
  EXPECT_EQ(deepEvalRefusal({}), "deep-eval plan empty");
  EXPECT_EQ(deepEvalRefusal(std::vector<std::string>(40, "1")), std::nullopt);
  EXPECT_EQ(deepEvalRefusal(std::vector<std::string>(41, "1")), "deep-eval exceeds 40 entries");
  // The number of entries is looked at first.
  EXPECT_EQ(deepEvalRefusal(std::vector<std::string>(41, std::string(300, '1'))),
            "deep-eval exceeds 40 entries");
}

TEST(DeepEvalRefusal, LimitsEveryEntryTo254Characters) {
  EXPECT_EQ(deepEvalRefusal({""}), std::nullopt);
  EXPECT_EQ(deepEvalRefusal({std::string(254, '1')}), std::nullopt);
  EXPECT_EQ(deepEvalRefusal({std::string(255, '1')}), "deep-eval entry exceeds 255 characters");
  EXPECT_EQ(deepEvalRefusal({"1", "2", std::string(255, '1')}),
            "deep-eval entry exceeds 255 characters");
}

TEST(DeepEvalRefusal, CountsCharactersAsTheReaderDoes) {
  const std::string accented = "e\xCC\x81";  // e and a combining accent
  const std::string family = "\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9";  // two, joined
  std::string longest, tooLong;
  for (int i = 0; i < 127; ++i) longest += accented + family;
  EXPECT_EQ(deepEvalRefusal({longest}), std::nullopt);
  EXPECT_EQ(deepEvalRefusal({longest + accented}), "deep-eval entry exceeds 255 characters");
  // Text that is not valid UTF-8 is counted by its bytes.
  EXPECT_EQ(deepEvalRefusal({std::string(255, '\xFF')}), "deep-eval entry exceeds 255 characters");
}

TEST(DeepEvalFailure, MapsNumbersToKinds) {
  const struct {
    int code;
    const char* kind;
  } examples[] = {{-9001, "refused"},   {-9003, "refused"},   {-9005, "refused"},
                  {-9000, "transport"}, {-9006, "transport"}, {-9990, "timeout"},
                  {-1712, "timeout"},   {-9991, "transport"}, {-1728, "transport"},
                  {-50, "transport"},   {0, "transport"}};
  for (const auto& example : examples)
    EXPECT_EQ(deepEvalFailure(example.code, "m"),
              JSONValue(Object{{"ok", false}, {"kind", example.kind}, {"message", "m"}}))
        << example.code;
}

TEST(DeepEvalObject, WrapsTheValue) {
  EXPECT_EQ(deepEvalObject("#N/A"), JSONValue(Object{{"ok", true}, {"value", "#N/A"}}));
  EXPECT_EQ(deepEvalObject(nullptr), JSONValue(Object{{"ok", true}, {"value", nullptr}}));
}

TEST(DeepEvalObject, FailsForWhatCouldNotBeMarshalled) {
  const JSONValue result = JSONValue::Array{1, Object{{"__unmarshalled", "obj "}}};
  EXPECT_EQ(deepEvalObject(result),
            JSONValue(Object{{"ok", false},
                             {"kind", "transport"},
                             {"message", "deep-eval result could not be marshalled"}}));
}

}  // namespace
}  // namespace quorin::BridgeShapes
