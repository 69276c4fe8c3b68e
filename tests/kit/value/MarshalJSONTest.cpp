// The conversions of Marshal that have to do with JSON text and platform object trees.
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <utility>
#include <vector>

#include "kit/value/Marshal.h"

namespace quorin {
namespace {

using Array = JSONValue::Array;
using Object = JSONValue::Object;

const double nan = std::numeric_limits<double>::quiet_NaN();
const double infinity = std::numeric_limits<double>::infinity();

// A platform's object tree in memory.
class Tree : public AnyValue {
 public:
  Tree() = default;
  static Tree of(Kind kind) {
    Tree tree;
    tree.kind_ = kind;
    return tree;
  }
  static Tree boolean(bool value) {
    Tree tree = of(Kind::boolean);
    tree.boolean_ = value;
    return tree;
  }
  static Tree number(double value) {
    Tree tree = of(Kind::number);
    tree.number_ = value;
    return tree;
  }
  static Tree text(std::string value) {
    Tree tree = of(Kind::text);
    tree.text_ = std::move(value);
    return tree;
  }
  static Tree list(std::vector<Tree> items) {
    Tree tree = of(Kind::list);
    tree.items_ = std::move(items);
    return tree;
  }
  static Tree dictionary(std::vector<std::pair<std::string, Tree>> members) {
    Tree tree = of(Kind::dictionary);
    for (auto& [key, member] : members) {
      tree.keys_.push_back(key);
      tree.items_.push_back(std::move(member));
    }
    return tree;
  }

  Kind kind() const override { return kind_; }
  bool boolean() const override { return boolean_; }
  double number() const override { return number_; }
  std::string text() const override { return text_; }
  void forEachItem(const ItemVisitor& visit) const override {
    for (const Tree& item : items_) visit(item);
  }
  void forEachMember(const MemberVisitor& visit) const override {
    for (std::size_t i = 0; i < items_.size(); ++i) visit(keys_[i], items_[i]);
  }

 private:
  Kind kind_ = Kind::absent;
  bool boolean_ = false;
  double number_ = 0;
  std::string text_;
  std::vector<std::string> keys_;
  std::vector<Tree> items_;
};

// A list that holds itself.
class Endless : public Tree {
 public:
  Kind kind() const override { return Kind::list; }
  void forEachItem(const ItemVisitor& visit) const override { visit(*this); }
};

TEST(MarshalFromAny, GivesNullForNothingAndForTheNullObject) {
  EXPECT_EQ(Marshal::fromAny(Tree::of(AnyValue::Kind::absent)), JSONValue());
  EXPECT_EQ(Marshal::fromAny(Tree::of(AnyValue::Kind::null)), JSONValue());
}

TEST(MarshalFromAny, TellsBooleansFromTheNumbersOneAndZero) {
  EXPECT_EQ(Marshal::fromAny(Tree::boolean(true)), JSONValue(true));
  EXPECT_EQ(Marshal::fromAny(Tree::number(1)), JSONValue(1.0));
  EXPECT_FALSE(Marshal::fromAny(Tree::boolean(true)) == Marshal::fromAny(Tree::number(1)));
}

TEST(MarshalFromAny, ConvertsAMixedList) {
  const Tree list = Tree::list({Tree::number(1), Tree::text("a"), Tree::of(AnyValue::Kind::null),
                                Tree::dictionary({{"on", Tree::boolean(true)}})});
  EXPECT_EQ(Marshal::fromAny(list), JSONValue(Array{1.0, "a", nullptr, Object{{"on", true}}}));
}

TEST(MarshalFromAny, GivesNullForADateAnywhere) {
  const Tree date = Tree::of(AnyValue::Kind::other);
  EXPECT_EQ(Marshal::fromAny(date), JSONValue());
  EXPECT_EQ(Marshal::fromAny(Tree::list({date, Tree::number(2)})), JSONValue(Array{nullptr, 2}));
}

TEST(MarshalFromAny, CutsATreeOffAtTheMaximumDepth) {
  const JSONValue result = Marshal::fromAny(Endless());
  std::size_t depth = 0;
  const JSONValue* level = &result;
  while (level->array()) {
    ++depth;
    level = &level->array()->front();
  }
  EXPECT_EQ(depth, 512u);
  EXPECT_TRUE(level->isNull());
}

TEST(MarshalJSONObject, ReplacesNumbersThatAreNotFiniteByNull) {
  EXPECT_EQ(Marshal::jsonObject(nan), JSONValue());
  EXPECT_EQ(Marshal::jsonObject(Array{1, infinity, Object{{"a", -infinity}, {"b", "x"}}, true}),
            JSONValue(Array{1, nullptr, Object{{"a", nullptr}, {"b", "x"}}, true}));
}

TEST(MarshalEncode, WritesScalarsAsWholeTexts) {
  EXPECT_EQ(Marshal::encode(true), "true");
  EXPECT_EQ(Marshal::encode(false), "false");
  EXPECT_EQ(Marshal::encode(nullptr), "null");
  EXPECT_EQ(Marshal::encode("a"), "\"a\"");
  EXPECT_EQ(Marshal::encode(""), "\"\"");
  EXPECT_EQ(Marshal::encode(Array{}), "[]");
  EXPECT_EQ(Marshal::encode(Object{}), "{}");
}

TEST(MarshalEncode, WritesNumbersThatAreNotFiniteAsNull) {
  EXPECT_EQ(Marshal::encode(nan), "null");
  EXPECT_EQ(Marshal::encode(Array{infinity, -infinity, 1}), "[null,null,1]");
}

TEST(MarshalEncode, WritesIntegralNumbersWithoutFraction) {
  EXPECT_EQ(Marshal::encode(3.0), "3");
  EXPECT_EQ(Marshal::encode(-3.0), "-3");
  EXPECT_EQ(Marshal::encode(1e10), "10000000000");
  EXPECT_EQ(Marshal::encode(9007199254740992.0), "9007199254740992");
  EXPECT_EQ(Marshal::encode(-2147483648.0), "-2147483648");
}

TEST(MarshalEncode, WritesUpTo17DigitsOfAnIntegralNumberWithoutExponent) {
  EXPECT_EQ(Marshal::encode(1e15), "1000000000000000");
  EXPECT_EQ(Marshal::encode(-1e15), "-1000000000000000");
  EXPECT_EQ(Marshal::encode(1e16), "10000000000000000");
  EXPECT_EQ(Marshal::encode(9007199254740993.0), "9007199254740992");
  EXPECT_EQ(Marshal::encode(99999999999999984.0), "99999999999999984");
  EXPECT_EQ(Marshal::encode(1e17), "1e+17");
}

TEST(MarshalEncode, WritesEqualZerosAlike) {
  EXPECT_EQ(Marshal::encode(0.0), "0");
  EXPECT_EQ(Marshal::encode(-0.0), "0");
}

TEST(MarshalEncode, WritesTheShortestDigitsThatReadBackTheSame) {
  EXPECT_EQ(Marshal::encode(0.1), "0.1");
  EXPECT_EQ(Marshal::encode(-2.5), "-2.5");
  EXPECT_EQ(Marshal::encode(1.0 / 3), "0.3333333333333333");
  EXPECT_EQ(Marshal::encode(1e300), "1e+300");
  EXPECT_EQ(Marshal::encode(5e-324), "5e-324");
}

TEST(MarshalEncode, SortsKeys) {
  Object object;
  object["b"] = 1;
  object["a"] = Object{{"z", 1}, {"y", Array{Object{{"d", 1}, {"c", 2}}}}};
  EXPECT_EQ(Marshal::encode(object), R"({"a":{"y":[{"c":2,"d":1}],"z":1},"b":1})");
}

TEST(MarshalEncode, EscapesSlashesQuotesAndControls) {
  EXPECT_EQ(Marshal::encode("a/b"), R"("a\/b")");
  EXPECT_EQ(Marshal::encode("\"\\\b\f\n\r\t"), R"("\"\\\b\f\n\r\t")");
  EXPECT_EQ(Marshal::encode(std::string("\0\x1f\x7f", 3)), "\"\\u0000\\u001f\x7f\"");
  EXPECT_EQ(Marshal::encode(Object{{"a/b\n", 1}}), R"({"a\/b\n":1})");
}

TEST(MarshalEncode, EscapesAtEveryPlaceOfALongerText) {
  const std::pair<std::string, std::string> cases[] = {
      {"\"", "\\\""},       {"\\", "\\\\"},
      {"/", "\\/"},         {"\n", "\\n"},
      {"\x1f", "\\u001f"},  {std::string(1, '\0'), "\\u0000"},
      {"\u00E9", "\u00E9"}, {"\U0001F600", "\U0001F600"},
      {" ", " "},           {"\x7f", "\x7f"},
      {"!", "!"},           {"~", "~"}};
  for (const auto& [character, written] : cases) {
    for (std::size_t place = 0; place <= 20; ++place) {
      const std::string before(place, 'a');
      const std::string after(20 - place, 'z');
      EXPECT_EQ(Marshal::encode(before + character + after),
                "\"" + before + written + after + "\"");
    }
  }
}

TEST(MarshalEncode, KeepsCharactersBeyondASCII) {
  EXPECT_EQ(Marshal::encode("\u00E9\u2028\U0001F600/"), "\"\u00E9\u2028\U0001F600\\/\"");
}

TEST(MarshalEncode, GivesTheTextNullForInvalidUTF8Anywhere) {
  EXPECT_EQ(Marshal::encode("\xFF"), "null");
  EXPECT_EQ(Marshal::encode("\xC3"), "null");
  EXPECT_EQ(Marshal::encode("\xED\xA0\x80"), "null");
  EXPECT_EQ(Marshal::encode("\xC0\xAF"), "null");
  EXPECT_EQ(Marshal::encode(Array{1, "fine", Object{{"a", "\xFF"}}}), "null");
  EXPECT_EQ(Marshal::encode(Object{{"\xFF", 1}}), "null");
}

TEST(MarshalEncode, WritesATreeOfAnyDepth) {
  JSONValue value = 1;
  for (int i = 0; i < 100'000; ++i) {
    Array outer;
    outer.push_back(std::move(value));
    value = std::move(outer);
  }
  EXPECT_EQ(Marshal::encode(value), std::string(100'000, '[') + "1" + std::string(100'000, ']'));
}

TEST(MarshalContainsUnmarshalled, FindsTheMarkerAtAnyDepth) {
  const JSONValue marker = Object{{"__unmarshalled", "ldt "}};
  EXPECT_TRUE(Marshal::containsUnmarshalled(marker));
  EXPECT_TRUE(Marshal::containsUnmarshalled(Array{1, Object{{"a", Array{marker}}}}));
  EXPECT_TRUE(Marshal::containsUnmarshalled(Object{{"__unmarshalled", nullptr}, {"a", 1}}));
}

TEST(MarshalContainsUnmarshalled, IsFalseForEverythingElse) {
  EXPECT_FALSE(Marshal::containsUnmarshalled(Object{{"__unmarshalledToo", 1}}));
  EXPECT_FALSE(Marshal::containsUnmarshalled("__unmarshalled"));
  EXPECT_FALSE(Marshal::containsUnmarshalled(Array{"__unmarshalled"}));
  for (const JSONValue& value : Array{true, 1, "a", nullptr, Array{}, Object{}}) {
    EXPECT_FALSE(Marshal::containsUnmarshalled(value));
  }
}

}  // namespace
}  // namespace quorin
