// What specifiers mean: elements by name and number, dynamic properties, text in `range "..."`.
#include "tests/host/ObjectModelFixture.h"

namespace quorin::host {
namespace {

using namespace events;

class References : public ObjectModelTest {};

TEST_F(References, AnswerObjectsByTheirNames) {
  EXPECT_EQ(get(range("b2")),
            named(codes::range, "$B$2",
                  named(codes::worksheet, "Data", named(codes::workbook, "Known.xlsx"))));
  EXPECT_EQ(get(indexed(codes::worksheet, 2, indexed(codes::workbook, 1))), odd());
  EXPECT_EQ(get(worksheet("DATA")), data());
  EXPECT_EQ(get(property(codes::currentRegion, on("B2"))), on("$A$1:$C$4"));
}

TEST_F(References, KeepWhatIsActiveDynamic) {
  for (FourCharCode code : {codes::activeCell, codes::activeSheet, codes::activeWorkbook,
                            codes::activeWindow, codes::selection}) {
    const Descriptor dynamic = property(code);
    const Descriptor held = get(dynamic);
    EXPECT_EQ(held, dynamic);
  }
  const Descriptor held = get(property(codes::activeCell));
  select("Data", "B2");
  EXPECT_EQ(addressOf(held), "$B$2");
  select("It's a test", "C3");
  EXPECT_EQ(addressOf(held), "$C$3");
  EXPECT_EQ(get(property(codes::activeSheet, workbook("Known.xlsx"))),
            property(codes::activeSheet, workbook("Known.xlsx")));
}

TEST_F(References, InsideADynamicOneBecomeFixed) {
  select("Data", "B2");
  EXPECT_EQ(get(range("A1", property(codes::activeSheet))), on("$A$1"));
}

TEST_F(References, NameTheWorkbookAndSheetAroundTheActiveCell) {
  select("It's a test", "A1");
  EXPECT_EQ(get(property(codes::name, property(codes::activeWorkbook))),
            Descriptor::text("Known.xlsx"));
  EXPECT_EQ(get(property(codes::name, property(codes::activeSheet))),
            Descriptor::text("It's a test"));
}

TEST_F(References, FindTheWorkbookWhoseNameWasToldInTheSameHandler) {
  const Descriptor active = property(codes::name, property(codes::activeWorkbook));
  model_->handlerBegins({});
  EXPECT_EQ(get(active), Descriptor::text("Known.xlsx"));
  memory().script.clear();
  EXPECT_EQ(get(property(codes::name, workbook("Known.xlsx"))), Descriptor::text("Known.xlsx"));
  EXPECT_EQ(memory().script.count(), 0U);
  EXPECT_EQ(errorOf(property(codes::name, workbook("Other.xlsx"))), -1728);
  model_->handlerEnds();
  memory().close("Known.xlsx");
  EXPECT_EQ(errorOf(property(codes::name, workbook("Known.xlsx"))), -1728);
  model_->handlerBegins({});
  EXPECT_EQ(errorOf(property(codes::name, workbook("Known.xlsx"))), -1728);
  model_->handlerEnds();
}

TEST_F(References, AnswerMissingValueWhereNothingIsOpen) {
  memory().close("Known.xlsx");
  EXPECT_EQ(get(property(codes::activeCell)), Descriptor::missingValue());
  EXPECT_EQ(get(property(codes::name, property(codes::activeWorkbook))),
            Descriptor::missingValue());
  EXPECT_EQ(get(property(codes::name, every(codes::workbook))), Descriptor::missingValue());
  EXPECT_EQ(get(every(codes::workbook)), Descriptor::missingValue());
  EXPECT_EQ(errorOf(range("A1")), -1728);
  EXPECT_EQ(errorOf(getAddress(property(codes::selection))), -1728);
  EXPECT_EQ(errorOf(property(codes::bounds, indexed(codes::window, 1))), -1728);
}

TEST_F(References, GiveTheNamesOfEveryElementInOneEvent) {
  EXPECT_EQ(
      get(property(codes::name, every(codes::worksheet, workbook("Known.xlsx")))),
      row({Descriptor::text("Data"), Descriptor::text("It's a test"), Descriptor::text("Blank")}));
  EXPECT_EQ(get(property(codes::name, every(codes::workbook))),
            row({Descriptor::text("Known.xlsx")}));
  EXPECT_EQ(get(property(codes::name, every(codes::sheet))).items().size(), 3U);
  EXPECT_EQ(get(every(codes::worksheet)).items().at(1), odd());
}

TEST_F(References, AskForTheSheetNamesOnce) {
  memory().script.clear();
  get(property(codes::name, every(codes::worksheet, workbook("Known.xlsx"))));
  EXPECT_LE(memory().script.calls().size(), 4U);
}

TEST_F(References, FindElementsFromEitherEnd) {
  EXPECT_EQ(get(ordinal(codes::worksheet, codes::last)),
            worksheet("Blank", workbook("Known.xlsx")));
  EXPECT_EQ(get(ordinal(codes::worksheet, codes::first)), data());
  EXPECT_EQ(get(indexed(codes::worksheet, -2)), odd());
  EXPECT_EQ(
      get(element(codes::worksheet, codes::formRange,
                  Descriptor::withFields(codes::rangeDescriptor,
                                         {{codes::rangeStart, indexed(codes::worksheet, 2)},
                                          {codes::rangeStop, indexed(codes::worksheet, 3)}}))),
      row({odd(), worksheet("Blank", workbook("Known.xlsx"))}));
}

TEST_F(References, ReachCellsRowsAndColumns) {
  EXPECT_EQ(addressOf(indexed(codes::row, 5, data())), "$5:$5");
  EXPECT_EQ(addressOf(named(codes::row, "5:6", data())), "$5:$6");
  EXPECT_EQ(addressOf(indexed(codes::column, 2)), "$B:$B");
  EXPECT_EQ(addressOf(named(codes::column, "B:D")), "$B:$D");
  EXPECT_EQ(addressOf(named(codes::cell, "A1")), "$A$1");
  EXPECT_EQ(addressOf(indexed(codes::cell, 3, indexed(codes::row, 5, data()))), "$C$5");
  EXPECT_EQ(addressOf(indexed(codes::cell, 3, on("B2:C3"))), "$B$3");
  EXPECT_EQ(addressOf(indexed(codes::cell, 5, on("B2:C3,H9"))), "$H$9");
  EXPECT_EQ(addressOf(indexed(codes::row, 2, on("B2:C3"))), "$B$3:$C$3");
  EXPECT_EQ(addressOf(ordinal(codes::column, codes::last, on("B2:C3"))), "$C$2:$C$3");
  EXPECT_EQ(addressOf(every(codes::cell, on("B2:C3"))), "$B$2:$C$3");
  EXPECT_EQ(errorOf(named(codes::column, "B")), -1728);
  EXPECT_EQ(errorOf(named(codes::row, "A1")), -1728);
  EXPECT_EQ(errorOf(indexed(codes::row, 3, on("B2:C3"))), -1728);
}

struct Binding {
  const char* text;
  const char* sheet;
  const char* address;
};

void PrintTo(const Binding& binding, std::ostream* out) {
  *out << binding.text;
}

class RangeText : public ObjectModelTest, public ::testing::WithParamInterface<Binding> {};

TEST_P(RangeText, BindsOnTheSheetItNames) {
  select("Data", "A1");
  EXPECT_EQ(get(range(GetParam().text)),
            range(GetParam().address, worksheet(GetParam().sheet, workbook("Known.xlsx"))));
}

INSTANTIATE_TEST_SUITE_P(
    Table, RangeText,
    ::testing::Values(
        Binding{"A1", "Data", "$A$1"}, Binding{"c5:d9,G9:H16", "Data", "$C$5:$D$9,$G$9:$H$16"},
        Binding{"5:5", "Data", "$5:$5"}, Binding{"Data!A1", "Data", "$A$1"},
        Binding{"data!$B$2:$B$3", "Data", "$B$2:$B$3"},
        Binding{"Data!A1:Data!B2", "Data", "$A$1:$B$2"}, Binding{"A1:data!B2", "Data", "$A$1:$B$2"},
        Binding{"'It''s a test'!B9:'it''s a test'!$A$1,'It''s a test'!C3", "It's a test",
                "$A$1:$B$9,$C$3"},
        Binding{"[Known.xlsx]Data!A:[Known.xlsx]Data!C", "Data", "$A:$C"},
        Binding{"Known.xlsx!Prices", "Data", "$B$2:$B$3"},
        Binding{"'It''s a test'!A1", "It's a test", "$A$1"},
        Binding{"'it''s a test'!A1,'It''s a test'!C3", "It's a test", "$A$1,$C$3"},
        Binding{"[Known.xlsx]Data!A1", "Data", "$A$1"},
        Binding{"'[known.xlsx]It''s a test'!B2", "It's a test", "$B$2"},
        Binding{"Prices", "Data", "$B$2:$B$3"}, Binding{"prices", "Data", "$B$2:$B$3"},
        Binding{"Prices,A1", "Data", "$B$2:$B$3,$A$1"}, Binding{"Spot", "Data", "$A$1"},
        Binding{"'It''s a test'!Spot", "It's a test", "$B$2"}));

class UnboundText : public ObjectModelTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(UnboundText, IsNoSuchObject) {
  const AppleEventReply reply = send(events::get(range(GetParam())));
  ASSERT_TRUE(reply.error);
  EXPECT_EQ(reply.error->number, -1728);
  EXPECT_EQ(reply.error->offender, range(GetParam()));
  EXPECT_EQ(errorOf(getAddress(range(GetParam()))), -1728);
}

INSTANTIATE_TEST_SUITE_P(Table, UnboundText,
                         ::testing::Values("", "junk", "A1:", "A1,", ",A1", "A", "R1C1", "A1048577",
                                           "XFE1", "Nowhere!A1", "'Nowhere'!A1",
                                           "[Other.xlsx]Data!A1", "'Data!A1", "Data!", "Factor",
                                           "Data!A1,Blank!A1", "A1;B2", "A1 B2", "Data!A1:Blank!B2",
                                           "Blank!A1:Data!B2", "Data!A1:Nowhere!B2", "A1:Data!",
                                           "Data!A1:Data!Prices", "Other.xlsx!Prices",
                                           "Known.xlsx!A1"));

TEST_F(References, StayOnTheSheetTheyAreOf) {
  select("Data", "A1");
  EXPECT_EQ(get(range("A1", odd())), range("$A$1", odd()));
  EXPECT_EQ(get(range("Spot", odd())), range("$B$2", odd()));
  EXPECT_EQ(get(range("'It''s a test'!B2", odd())), range("$B$2", odd()));
  EXPECT_EQ(errorOf(range("Data!A1", odd())), -1728);
  EXPECT_EQ(errorOf(range("Prices", odd())), -1728);
}

TEST_F(References, RefuseWhatIsNotThere) {
  const auto missing = worksheet("Nowhere", workbook("Known.xlsx"));
  const AppleEventReply reply = send(getAddress(range("A1", missing)));
  ASSERT_TRUE(reply.error);
  EXPECT_EQ(reply.error->number, -1728);
  EXPECT_EQ(reply.error->offender, missing);
  EXPECT_EQ(errorOf(workbook("Other.xlsx")), -1728);
  EXPECT_EQ(errorOf(worksheet("Data", workbook("Other.xlsx"))), -1728);
  EXPECT_EQ(errorOf(indexed(codes::worksheet, 4)), -1728);
  EXPECT_EQ(errorOf(indexed(codes::worksheet, 0)), -1728);
  EXPECT_EQ(errorOf(indexed(codes::window, 2)), -1728);
  EXPECT_EQ(errorOf(property(codes::usedRange, on("A1"))), -1728);
  EXPECT_EQ(errorOf(range("A1", workbook("Known.xlsx"))), -1728);
  EXPECT_EQ(errorOf(Descriptor::specifier({})), -1728);
}

TEST_F(References, RefuseChainsWithoutEnd) {
  const auto rowOfRowOf = [](int times) {
    Descriptor chain = on("A1");
    for (int i = 0; i < times; ++i) chain = property(codes::entireRow, std::move(chain));
    return chain;
  };
  EXPECT_EQ(addressOf(rowOfRowOf(50)), "$1:$1");
  EXPECT_EQ(errorOf(rowOfRowOf(200)), -1728);
}

TEST_F(References, TellTheirClass) {
  EXPECT_EQ(get(property(codes::classOf, on("A1"))), Descriptor::typeCode(codes::range));
  EXPECT_EQ(get(property(codes::classOf, data())), Descriptor::typeCode(codes::worksheet));
  EXPECT_EQ(get(property(codes::classOf, workbook("Known.xlsx"))),
            Descriptor::typeCode(codes::workbook));
}

TEST_F(References, ExistOrNot) {
  const auto exists = [this](Descriptor object) {
    return ask(event(codes::coreSuite, codes::exists, {{keyDirectObject, std::move(object)}}));
  };
  const Descriptor yes = Descriptor::boolean(true), no = Descriptor::boolean(false);
  EXPECT_EQ(exists(workbook("Known.xlsx")), yes);
  EXPECT_EQ(exists(workbook("Other.xlsx")), no);
  EXPECT_EQ(exists(worksheet("Blank", workbook("Known.xlsx"))), yes);
  EXPECT_EQ(exists(worksheet("Nowhere", workbook("Known.xlsx"))), no);
  EXPECT_EQ(exists(range("Nowhere!A1")), no);
  EXPECT_EQ(exists(property(codes::activeCell)), yes);
  memory().close("Known.xlsx");
  EXPECT_EQ(exists(property(codes::activeCell)), no);
  EXPECT_EQ(exists(every(codes::workbook)), no);
}

TEST_F(References, AreCountedAsIntegers) {
  const auto count = [this](Descriptor object) {
    return ask(event(codes::coreSuite, codes::count, {{keyDirectObject, std::move(object)}}));
  };
  EXPECT_EQ(count(every(codes::workbook)), Descriptor::integer(1));
  EXPECT_EQ(count(every(codes::worksheet)), Descriptor::integer(3));
  EXPECT_EQ(count(every(codes::cell, on("A1:B3,D4"))), Descriptor::integer(7));
  EXPECT_EQ(count(every(codes::row, on("A1:B3,D4"))), Descriptor::integer(3));
  EXPECT_EQ(count(every(codes::column, on("A1:B3,D4"))), Descriptor::integer(2));
  EXPECT_EQ(count(every(codes::cell, on("5:5"))), Descriptor::integer(16384));
  EXPECT_EQ(count(every(codes::cell, data())), Descriptor::real(17179869184.0));
  EXPECT_EQ(count(every(codes::window)), Descriptor::integer(1));
  EXPECT_EQ(ask(event(codes::coreSuite, codes::count,
                      {{keyDirectObject, workbook("Known.xlsx")},
                       {codes::countEach, Descriptor::typeCode(codes::worksheet)}})),
            Descriptor::integer(3));
  memory().close("Known.xlsx");
  EXPECT_EQ(count(every(codes::workbook)), Descriptor::integer(0));
}

TEST_F(References, CountCellsWithoutReadingThem) {
  select("Data", "A1");
  memory().script.clear();
  ask(event(codes::coreSuite, codes::count,
            {{keyDirectObject, every(codes::cell, range("A1:XFD1048576"))}}));
  EXPECT_EQ(memory().script.calls(), std::vector<std::string>{"activeSheet"});
}

}  // namespace
}  // namespace quorin::host
