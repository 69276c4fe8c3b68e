// The conversions of Marshal to and from Apple-event descriptors.
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <utility>

#include "kit/value/Marshal.h"

namespace quorin {
namespace {

using Array = JSONValue::Array;
using Object = JSONValue::Object;
using Descriptor = AppleEventDescriptor;

constexpr FourCharCode usrf = fourCharCode("usrf");

JSONValue marker(const char* code) {
  return Object{{"__unmarshalled", code}};
}

TEST(MarshalToDescriptor, ConvertsScalars) {
  EXPECT_EQ(Marshal::toDescriptor(true), Descriptor::boolean(true));
  EXPECT_EQ(Marshal::toDescriptor(false), Descriptor::boolean(false));
  EXPECT_EQ(Marshal::toDescriptor("caf\u00E9"), Descriptor::text("caf\u00E9"));
  EXPECT_EQ(Marshal::toDescriptor(nullptr), Descriptor::null());
}

TEST(MarshalToDescriptor, SendsIntegralDoublesAsIntegers) {
  EXPECT_EQ(Marshal::toDescriptor(3.0), Descriptor::integer(3));
  EXPECT_EQ(Marshal::toDescriptor(2147483647.0), Descriptor::integer(2147483647));
  EXPECT_EQ(Marshal::toDescriptor(-2147483648.0), Descriptor::integer(-2147483647 - 1));
  EXPECT_EQ(Marshal::toDescriptor(-0.0), Descriptor::integer(0));
}

TEST(MarshalToDescriptor, SendsOtherNumbersAsDoubles) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double value :
       {3.5, 1e10, 2147483648.0, -2147483649.0, -2147483648.5, 2147483647.5, infinity, -infinity}) {
    EXPECT_EQ(Marshal::toDescriptor(value), Descriptor::real(value)) << value;
  }
  const Descriptor notANumber = Marshal::toDescriptor(std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(notANumber.type(), fourCharCode("doub"));
  EXPECT_TRUE(std::isnan(*notANumber.doubleValue()));
}

TEST(MarshalToDescriptor, KeepsTheOrderOfAnArray) {
  EXPECT_EQ(Marshal::toDescriptor(Array{1, "a", Array{}}),
            Descriptor::list({Descriptor::integer(1), Descriptor::text("a"), Descriptor::list()}));
}

TEST(MarshalToDescriptor, SendsAnObjectAsSortedUserFields) {
  Object object;
  object["b"] = 2;
  object["a"] = true;
  EXPECT_EQ(Marshal::toDescriptor(object),
            Descriptor::record(
                {{usrf, Descriptor::list({Descriptor::text("a"), Descriptor::boolean(true),
                                          Descriptor::text("b"), Descriptor::integer(2)})}}));
  EXPECT_EQ(Marshal::toDescriptor(Object{}), Descriptor::record({{usrf, Descriptor::list()}}));
}

TEST(MarshalFromDescriptor, ReadsTheBooleanTypes) {
  EXPECT_EQ(Marshal::fromDescriptor(Descriptor::boolean(true)), JSONValue(true));
  EXPECT_EQ(Marshal::fromDescriptor(Descriptor::boolean(false)), JSONValue(false));
  EXPECT_EQ(Marshal::fromDescriptor(Descriptor::withInteger(fourCharCode("bool"), 1)),
            JSONValue(true));
  EXPECT_EQ(Marshal::fromDescriptor(Descriptor::withInteger(fourCharCode("bool"), 0)),
            JSONValue(false));
}

TEST(MarshalFromDescriptor, ReadsEveryNumericTypeAsADouble) {
  for (const FourCharCode type :
       {fourCharCode("shor"), fourCharCode("long"), fourCharCode("comp"), fourCharCode("magn"),
        fourCharCode("ushr"), fourCharCode("ucom")}) {
    EXPECT_EQ(Marshal::fromDescriptor(Descriptor::withInteger(type, 42)), JSONValue(42.0));
  }
  for (const FourCharCode type : {fourCharCode("sing"), fourCharCode("doub")}) {
    EXPECT_EQ(Marshal::fromDescriptor(Descriptor::withReal(type, 2.5)), JSONValue(2.5));
  }
  EXPECT_EQ(
      Marshal::fromDescriptor(Descriptor::withInteger(fourCharCode("comp"), 9007199254740993)),
      JSONValue(9007199254740992.0));
}

TEST(MarshalFromDescriptor, ReadsEveryTextTypeComposed) {
  for (const FourCharCode type :
       {fourCharCode("TEXT"), fourCharCode("utxt"), fourCharCode("utf8")}) {
    const JSONValue value = Marshal::fromDescriptor(Descriptor::withText(type, "cafe\u0301"));
    ASSERT_NE(value.string(), nullptr);
    EXPECT_EQ(*value.string(), "caf\u00E9");  // byte for byte
  }
}

TEST(MarshalFromDescriptor, MarksTextThatIsNoText) {
  EXPECT_EQ(Marshal::fromDescriptor(Descriptor::text("\xFF\xFE")), marker("utxt"));
  EXPECT_EQ(Marshal::fromDescriptor(Descriptor::withText(fourCharCode("TEXT"), "\x8E")),
            marker("TEXT"));
}

TEST(MarshalFromDescriptor, ReadsListsInOrder) {
  EXPECT_EQ(Marshal::fromDescriptor(Descriptor::list()), JSONValue(Array{}));
  EXPECT_EQ(Marshal::fromDescriptor(Descriptor::list(
                {Descriptor::real(1), Descriptor::missingValue(), Descriptor::list()})),
            JSONValue(Array{1, nullptr, Array{}}));
}

TEST(MarshalFromDescriptor, ReadsUserFieldsInPairs) {
  const Descriptor record = Descriptor::record(
      {{usrf, Descriptor::list({Descriptor::text("a"), Descriptor::integer(1),
                                Descriptor::integer(9), Descriptor::integer(2),  // no text: skipped
                                Descriptor::text("b"), Descriptor::boolean(true),
                                Descriptor::text("odd")})}});  // trailing: ignored
  EXPECT_EQ(Marshal::fromDescriptor(record), JSONValue(Object{{"a", 1}, {"b", true}}));
}

TEST(MarshalFromDescriptor, TakesTheTextInFrontOfEachPairForItsKeyWhateverItsValueIs) {
  const Descriptor record = Descriptor::record(
      {{usrf, Descriptor::list({Descriptor::text("name"), Descriptor::text("Bolt"),
                                Descriptor::text("unit"), Descriptor::text("kg"),
                                Descriptor::text("price"), Descriptor::real(1.5)})}});
  EXPECT_EQ(Marshal::fromDescriptor(record),
            JSONValue(Object{{"name", "Bolt"}, {"unit", "kg"}, {"price", 1.5}}));
  const Descriptor skipped = Descriptor::record(
      {{usrf, Descriptor::list({Descriptor::integer(9), Descriptor::text("value of no key"),
                                Descriptor::text("a"), Descriptor::integer(1)})}});
  EXPECT_EQ(Marshal::fromDescriptor(skipped), JSONValue(Object{{"a", 1}}));
}

TEST(MarshalFromDescriptor, NamesOtherFieldsByTheirCodes) {
  const Descriptor record = Descriptor::record({{fourCharCode("pnam"), Descriptor::text("Sheet1")},
                                                {fourCharCode("ID  "), Descriptor::integer(4)}});
  EXPECT_EQ(Marshal::fromDescriptor(record), JSONValue(Object{{"pnam", "Sheet1"}, {"ID  ", 4}}));
}

TEST(MarshalFromDescriptor, NamesUserFieldsThatAreNoListByTheirCode) {
  EXPECT_EQ(Marshal::fromDescriptor(Descriptor::record({{usrf, Descriptor::text("x")}})),
            JSONValue(Object{{"usrf", "x"}}));
}

TEST(MarshalFromDescriptor, ReadsBothKindsOfFieldsTogether) {
  const Descriptor record =
      Descriptor::record({{fourCharCode("pnam"), Descriptor::text("n")},
                          {usrf, Descriptor::list({Descriptor::text("a"), Descriptor::null()})}});
  EXPECT_EQ(Marshal::fromDescriptor(record), JSONValue(Object{{"pnam", "n"}, {"a", nullptr}}));
}

TEST(MarshalFromDescriptor, GivesNullForNullAndEveryTypeCode) {
  EXPECT_TRUE(Marshal::fromDescriptor(Descriptor::null()).isNull());
  EXPECT_TRUE(Marshal::fromDescriptor(Descriptor::missingValue()).isNull());
  EXPECT_TRUE(Marshal::fromDescriptor(Descriptor::typeCode(fourCharCode("ctxt"))).isNull());
}

TEST(MarshalFromDescriptor, MarksEveryOtherType) {
  EXPECT_EQ(Marshal::fromDescriptor(Descriptor::withInteger(fourCharCode("ldt "), 0)),
            marker("ldt "));
  EXPECT_EQ(Marshal::fromDescriptor(Descriptor::specifier({})), marker("obj "));
  EXPECT_EQ(Marshal::fromDescriptor(Descriptor::enumerator(fourCharCode("yes "))), marker("enum"));
  EXPECT_EQ(Marshal::fromDescriptor(Descriptor::withData(fourCharCode("alis"), "\x01\x02")),
            marker("alis"));
  EXPECT_EQ(Marshal::fromDescriptor(Descriptor::withData(0x8E616263, "")), marker("\u00E9abc"));
}

TEST(MarshalFromDescriptor, GivesBackWhatToDescriptorTook) {
  const Array values{true,
                     false,
                     0,
                     3,
                     -7.25,
                     1e10,
                     1e300,
                     "",
                     "a/b \u00E9 \U0001F600",
                     Array{},
                     Array{1, Array{2, Array{"x"}}, nullptr},
                     Object{},
                     Object{{"a", nullptr}, {"b", Object{{"c", Array{1, true}}}}, {"", 1}}};
  for (const JSONValue& value : values) {
    EXPECT_EQ(Marshal::fromDescriptor(Marshal::toDescriptor(value)), value)
        << Marshal::encode(value);
  }
}

TEST(MarshalFromDescriptor, MarksListsBelowTheMaximumDepth) {
  Descriptor deep = Descriptor::integer(1);
  for (int i = 0; i < 100'000; ++i) {
    Descriptor outer = Descriptor::list();
    outer.items().push_back(std::move(deep));
    deep = std::move(outer);
  }
  const JSONValue value = Marshal::fromDescriptor(deep);
  std::size_t depth = 0;
  const JSONValue* level = &value;
  while (level->array()) {
    ++depth;
    level = &level->array()->front();
  }
  EXPECT_EQ(depth, 512u);
  EXPECT_EQ(*level, marker("list"));
}

TEST(MarshalFromDescriptor, MarksRecordsBelowTheMaximumDepth) {
  Descriptor deep = Descriptor::integer(1);
  for (int i = 0; i < 100'000; ++i) {
    Descriptor pairs = Descriptor::list({Descriptor::text("k")});
    pairs.items().push_back(std::move(deep));
    Descriptor outer = Descriptor::record({{usrf, Descriptor::null()}});
    outer.fields().front().value = std::move(pairs);
    deep = std::move(outer);
  }
  const JSONValue value = Marshal::fromDescriptor(deep);
  std::size_t depth = 0;
  const JSONValue* level = &value;
  while (level->member("k")) {
    ++depth;
    level = level->member("k");
  }
  EXPECT_EQ(depth, 512u);
  EXPECT_EQ(*level, marker("reco"));
}

TEST(MarshalToDescriptor, SendsNullBelowTheMaximumDepth) {
  JSONValue value = 1;
  for (int i = 0; i < 100'000; ++i) {
    Array outer;
    outer.push_back(std::move(value));
    value = std::move(outer);
  }
  const Descriptor descriptor = Marshal::toDescriptor(value);
  std::size_t depth = 0;
  const Descriptor* level = &descriptor;
  while (level->type() == fourCharCode("list")) {
    ++depth;
    level = &level->items().front();
  }
  EXPECT_EQ(depth, 512u);
  EXPECT_EQ(*level, Descriptor::null());
}

TEST(MarshalToDescriptor, SendsNullForObjectsBelowTheMaximumDepth) {
  JSONValue value = 1;
  for (int i = 0; i < 100'000; ++i) {
    Object outer;
    outer.emplace("k", std::move(value));
    value = std::move(outer);
  }
  const Descriptor descriptor = Marshal::toDescriptor(value);
  std::size_t depth = 0;
  const Descriptor* level = &descriptor;
  while (const Descriptor* pairs = level->field(usrf)) {
    ++depth;
    level = &pairs->items().at(1);
  }
  EXPECT_EQ(depth, 512u);
  EXPECT_EQ(*level, Descriptor::null());
}

TEST(MarshalFourCC, ReadsTheBytesAsMacRoman) {
  EXPECT_EQ(Marshal::fourCC(0x6C647420), "ldt ");
  EXPECT_EQ(Marshal::fourCC(fourCharCode("usrf")), "usrf");
  // Mac OS Roman: 8E e acute, CA no-break space, DB euro sign, F0 the Apple logo, BD omega.
  EXPECT_EQ(Marshal::fourCC(0x8ECADBF0), "\u00E9\u00A0\u20AC\uF8FF");
  EXPECT_EQ(Marshal::fourCC(0x80FFBDA5), "\u00C4\u02C7\u03A9\u2022");
  EXPECT_EQ(Marshal::fourCC(0), std::string(4, '\0'));
}

}  // namespace
}  // namespace quorin
