#include <gtest/gtest.h>
#include <utility>

#include "kit/value/AppleEvent.h"
#include "kit/value/AppleEventDescriptor.h"

namespace quorin {
namespace {

using Descriptor = AppleEventDescriptor;

TEST(AppleEventDescriptor, GivesEachKindItsTypeCode) {
  EXPECT_EQ(Descriptor().type(), fourCharCode("null"));
  EXPECT_EQ(Descriptor::boolean(true).type(), fourCharCode("true"));
  EXPECT_EQ(Descriptor::boolean(false).type(), fourCharCode("fals"));
  EXPECT_EQ(Descriptor::integer(1).type(), fourCharCode("long"));
  EXPECT_EQ(Descriptor::real(1).type(), fourCharCode("doub"));
  EXPECT_EQ(Descriptor::text("a").type(), fourCharCode("utxt"));
  EXPECT_EQ(Descriptor::typeCode(1).type(), fourCharCode("type"));
  EXPECT_EQ(Descriptor::enumerator(1).type(), fourCharCode("enum"));
  EXPECT_EQ(Descriptor::list().type(), fourCharCode("list"));
  EXPECT_EQ(Descriptor::record().type(), fourCharCode("reco"));
  EXPECT_EQ(Descriptor::specifier({}).type(), fourCharCode("obj "));
}

TEST(AppleEventDescriptor, KnowsMissingValue) {
  EXPECT_TRUE(Descriptor::missingValue().isMissingValue());
  EXPECT_EQ(Descriptor::missingValue(), Descriptor::typeCode(fourCharCode("msng")));
  EXPECT_FALSE(Descriptor::typeCode(fourCharCode("ctxt")).isMissingValue());
  EXPECT_FALSE(Descriptor::null().isMissingValue());
  EXPECT_FALSE(Descriptor::enumerator(fourCharCode("msng")).isMissingValue());
}

TEST(AppleEventDescriptor, AnswersOnlyForItsOwnKind) {
  EXPECT_EQ(Descriptor::boolean(true).booleanValue(), true);
  EXPECT_EQ(Descriptor::withInteger(fourCharCode("bool"), 1).booleanValue(), true);
  EXPECT_EQ(Descriptor::integer(1).booleanValue(), std::nullopt);
  EXPECT_EQ(Descriptor::integer(-5).integerValue(), -5);
  EXPECT_EQ(Descriptor::real(4.0).integerValue(), 4);
  EXPECT_EQ(Descriptor::real(4.5).integerValue(), std::nullopt);
  EXPECT_EQ(Descriptor::real(0x1p63).integerValue(), std::nullopt);
  EXPECT_EQ(Descriptor::real(-0x1p63).integerValue(), INT64_MIN);
  EXPECT_EQ(Descriptor::text("4").integerValue(), std::nullopt);
  EXPECT_EQ(Descriptor::enumerator(4).integerValue(), std::nullopt);
  EXPECT_EQ(Descriptor::withInteger(fourCharCode("shor"), 3).doubleValue(), 3.0);
  EXPECT_EQ(Descriptor::boolean(true).doubleValue(), std::nullopt);
  EXPECT_EQ(Descriptor::text("a\u00E9").stringValue(), "a\u00E9");
  EXPECT_EQ(Descriptor::text("\xFF").stringValue(), std::nullopt);
  EXPECT_EQ(Descriptor::withData(fourCharCode("alis"), "a").stringValue(), std::nullopt);
  EXPECT_EQ(Descriptor::enumerator(fourCharCode("yes ")).codeValue(), fourCharCode("yes "));
  EXPECT_EQ(Descriptor::withInteger(fourCharCode("prop"), 7).codeValue(), 7u);
  EXPECT_EQ(Descriptor::integer(7).codeValue(), std::nullopt);
}

TEST(AppleEventDescriptor, FindsTheFirstFieldOfAKeyword) {
  const Descriptor record = Descriptor::record({{fourCharCode("aaaa"), Descriptor::integer(1)},
                                                {fourCharCode("bbbb"), Descriptor::integer(2)},
                                                {fourCharCode("bbbb"), Descriptor::integer(3)}});
  ASSERT_NE(record.field(fourCharCode("bbbb")), nullptr);
  EXPECT_EQ(*record.field(fourCharCode("bbbb")), Descriptor::integer(2));
  EXPECT_EQ(record.field(fourCharCode("cccc")), nullptr);
}

TEST(AppleEventDescriptor, HasNoChildrenWhereItsTypeHasNone) {
  Descriptor number = Descriptor::integer(1);
  number.items().push_back(Descriptor::null());
  number.fields().push_back({fourCharCode("aaaa"), Descriptor::null()});
  EXPECT_TRUE(std::as_const(number).items().empty());
  EXPECT_TRUE(std::as_const(number).fields().empty());
  EXPECT_EQ(number, Descriptor::integer(1));
}

TEST(AppleEventDescriptor, ComparesTypeAndData) {
  EXPECT_FALSE(Descriptor::text("a") == Descriptor::withText(fourCharCode("TEXT"), "a"));
  EXPECT_FALSE(Descriptor::integer(1) == Descriptor::real(1));
  EXPECT_TRUE(Descriptor::list({Descriptor::integer(1)}) ==
              Descriptor::list({Descriptor::integer(1)}));
  EXPECT_FALSE(Descriptor::list({Descriptor::integer(1)}) == Descriptor::list());
}

TEST(AppleEventDescriptor, CanBeReplacedByAPartOfItself) {
  Descriptor list = Descriptor::list({Descriptor::list({Descriptor::text("inner")})});
  list = list.items().front();
  EXPECT_EQ(list, Descriptor::list({Descriptor::text("inner")}));
  list = std::move(list.items().front());
  EXPECT_EQ(list, Descriptor::text("inner"));
}

TEST(AppleEventDescriptor, IsDestroyedAtAnyDepthWithoutRecursion) {
  Descriptor deep;
  for (int i = 0; i < 1'000'000; ++i) {
    Descriptor outer = i % 2 ? Descriptor::list() : Descriptor::record({{0, Descriptor()}});
    if (i % 2) {
      outer.items().push_back(std::move(deep));
    } else {
      outer.fields().front().value = std::move(deep);
    }
    deep = std::move(outer);
  }
  deep = Descriptor::null();
  EXPECT_EQ(deep, Descriptor());
}

TEST(AppleEvent, FindsParametersAndAttributes) {
  const AppleEvent event{fourCharCode("ascr"),
                         fourCharCode("psbr"),
                         {{keyDirectObject, Descriptor::list()}},
                         {{keySubject, Descriptor::null()}}};
  ASSERT_NE(event.parameter(keyDirectObject), nullptr);
  EXPECT_EQ(*event.parameter(keyDirectObject), Descriptor::list());
  EXPECT_EQ(event.parameter(keySubject), nullptr);
  ASSERT_NE(event.attribute(keySubject), nullptr);
  EXPECT_EQ(event.attribute(keyDirectObject), nullptr);
}

}  // namespace
}  // namespace quorin
