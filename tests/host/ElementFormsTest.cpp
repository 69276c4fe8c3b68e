// Elements by a test, by their place beside another and by id.
#include "tests/host/ObjectModelFixture.h"

namespace quorin::host {
namespace {

using namespace events;

class ElementForms : public ObjectModelTest {
 protected:
  static Descriptor examined(FourCharCode code) {
    return property(code, Descriptor::withData(codes::examined, {}));
  }
  static Descriptor compared(FourCharCode code, FourCharCode relation, Descriptor value) {
    return Descriptor::withFields(codes::comparison,
                                  {{codes::relation, Descriptor::enumerator(relation)},
                                   {codes::leftOperand, examined(code)},
                                   {codes::rightOperand, std::move(value)}});
  }
  static Descriptor joined(FourCharCode connective, AppleEventDescriptor::Items terms) {
    return Descriptor::withFields(codes::logical,
                                  {{codes::connective, Descriptor::enumerator(connective)},
                                   {codes::terms, Descriptor::list(std::move(terms))}});
  }
  static Descriptor whose(FourCharCode elementClass, Descriptor test, Descriptor container) {
    return element(elementClass, codes::formTest, std::move(test), std::move(container));
  }
  static Descriptor beside(FourCharCode elementClass, FourCharCode side, Descriptor object) {
    return element(elementClass, codes::formRelative, Descriptor::enumerator(side),
                   std::move(object));
  }
  static Descriptor string(const char* text) { return Descriptor::text(text); }
  std::string sheetsWhose(Descriptor test) {
    const Descriptor names = get(
        property(codes::name, whose(codes::worksheet, std::move(test), workbook("Known.xlsx"))));
    if (names.isMissingValue()) return "none";
    std::string joinedNames;
    for (const Descriptor& name : names.items())
      joinedNames.append(joinedNames.empty() ? "" : ", ").append(name.stringValue().value_or("?"));
    return joinedNames;
  }
};

TEST_F(ElementForms, PickWhatComparesAsTheTestSays) {
  EXPECT_EQ(sheetsWhose(compared(codes::name, codes::equal, string("DATA"))), "Data");
  EXPECT_EQ(sheetsWhose(compared(codes::name, codes::containing, string("a"))),
            "Data, It's a test, Blank");
  EXPECT_EQ(sheetsWhose(compared(codes::name, codes::beginsWith, string("bl"))), "Blank");
  EXPECT_EQ(sheetsWhose(compared(codes::name, codes::endsWith, string("TEST"))), "It's a test");
  EXPECT_EQ(sheetsWhose(compared(codes::entryIndex, codes::greaterOrEqual, Descriptor::real(2))),
            "It's a test, Blank");
  EXPECT_EQ(sheetsWhose(compared(codes::entryIndex, codes::greater, Descriptor::integer(2))),
            "Blank");
  EXPECT_EQ(sheetsWhose(compared(codes::entryIndex, codes::less, Descriptor::integer(2))), "Data");
  EXPECT_EQ(sheetsWhose(compared(codes::entryIndex, codes::lessOrEqual, Descriptor::integer(2))),
            "Data, It's a test");
  EXPECT_EQ(sheetsWhose(compared(codes::name, codes::equal, Descriptor::integer(1))), "none");
}

TEST_F(ElementForms, JoinTests) {
  const Descriptor second = compared(codes::entryIndex, codes::equal, Descriptor::integer(2));
  const Descriptor data = compared(codes::name, codes::equal, string("Data"));
  EXPECT_EQ(sheetsWhose(joined(codes::logicalOr, {second, data})), "Data, It's a test");
  EXPECT_EQ(sheetsWhose(joined(codes::logicalAnd, {second, data})), "none");
  EXPECT_EQ(sheetsWhose(joined(codes::logicalNot, {data})), "It's a test, Blank");
  EXPECT_EQ(errorOf(whose(codes::worksheet, string("no test"), workbook("Known.xlsx"))), -1726);
}

TEST_F(ElementForms, CountAndFindWhatATestPicks) {
  const auto above = [&](double value) {
    return whose(codes::cell, compared(codes::value2, codes::greater, Descriptor::real(value)),
                 on("B2:C3"));
  };
  EXPECT_EQ(get(above(2)), row({on("$C$2"), on("$C$3")}));
  EXPECT_EQ(ask(event(codes::coreSuite, codes::count, {{keyDirectObject, above(2)}})),
            Descriptor::integer(2));
  EXPECT_EQ(ask(event(codes::coreSuite, codes::exists, {{keyDirectObject, above(9)}})),
            Descriptor::boolean(false));
  EXPECT_EQ(get(above(9)), Descriptor::missingValue());
}

TEST_F(ElementForms, AreFoundBesideOthers) {
  EXPECT_EQ(get(beside(codes::worksheet, codes::next, data())), odd());
  EXPECT_EQ(get(beside(codes::worksheet, codes::previous, odd())), data());
  EXPECT_EQ(errorOf(beside(codes::worksheet, codes::previous, data())), -1728);
  EXPECT_EQ(get(beside(codes::row, codes::next, on("2:3"))), on("$4:$4"));
  EXPECT_EQ(get(beside(codes::column, codes::previous, on("C:D"))), on("$B:$B"));
  EXPECT_EQ(get(beside(codes::cell, codes::next, on("B2"))), on("$C$2"));
  EXPECT_EQ(errorOf(beside(codes::cell, codes::previous, on("A2"))), -1728);
  EXPECT_EQ(errorOf(beside(codes::workbook, codes::next, workbook("Known.xlsx"))), -1728);
}

TEST_F(ElementForms, KeepAWindowsIDWhereverItStands) {
  const Descriptor first = get(property(codes::id, indexed(codes::window, 1)));
  memory().open({.name = "Later.xlsx", .sheets = {{"Only", {}}}});
  const Descriptor later = get(property(codes::id, indexed(codes::window, 1)));
  EXPECT_NE(first, later);
  const auto byID = [](const Descriptor& id) { return element(codes::window, codes::formID, id); };
  EXPECT_EQ(get(property(codes::name, byID(first))), Descriptor::text("Known.xlsx"));
  EXPECT_EQ(get(property(codes::name, byID(later))), Descriptor::text("Later.xlsx"));
  EXPECT_EQ(errorOf(byID(Descriptor::integer(77))), -1728);
  EXPECT_EQ(errorOf(element(codes::worksheet, codes::formID, first)), -1728);
}

}  // namespace
}  // namespace quorin::host
