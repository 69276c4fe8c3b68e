// The shapes of what Excel answers about cells, windows and itself.
#include "tests/host/ObjectModelFixture.h"

namespace quorin::host {
namespace {

using namespace events;

class Answers : public ObjectModelTest {
 protected:
  static Descriptor real(double value) { return Descriptor::real(value); }
  static Descriptor string(std::string text) { return Descriptor::text(std::move(text)); }
  Descriptor value2(std::string address) {
    return get(property(codes::value2, on(std::move(address))));
  }
};

TEST_F(Answers, GiveOneCellAsAScalar) {
  EXPECT_EQ(value2("A7"), real(42));
  EXPECT_EQ(value2("A2"), string("Bolt"));
  EXPECT_EQ(value2("E6"), Descriptor::boolean(true));
  EXPECT_EQ(value2("H20"), string(""));
  EXPECT_EQ(value2("C4"), Descriptor::missingValue());
}

TEST_F(Answers, GiveSeveralCellsAsRows) {
  EXPECT_EQ(value2("A2:B3"),
            row({row({string("Bolt"), real(1.5)}), row({string("Nut"), real(2)})}));
  EXPECT_EQ(value2("A2:B2"), row({row({string("Bolt"), real(1.5)})}));
  EXPECT_EQ(value2("B2:B4"), row({row({real(1.5)}), row({real(2)}), row({real(3.5)})}));
  EXPECT_EQ(value2("C3:C5"),
            row({row({real(4)}), row({Descriptor::missingValue()}), row({string("")})}));
}

TEST_F(Answers, ReadTheFirstAreaOfSeveral) {
  EXPECT_EQ(value2("B2:B3,A7"), row({row({real(1.5)}), row({real(2)})}));
  EXPECT_EQ(value2("A7,B2:B3"), real(42));
}

TEST_F(Answers, GiveFormulasAsTextAndConstantsAsThemselves) {
  EXPECT_EQ(get(property(codes::formula, on("C2"))), string("=B2*2"));
  EXPECT_EQ(get(property(codes::formula2, on("C2"))), string("=B2*2"));
  EXPECT_EQ(get(property(codes::formula, on("A7"))), real(42));
  EXPECT_EQ(get(property(codes::formula, on("H20"))), string(""));
  EXPECT_EQ(get(property(codes::formula, on("A4:C4"))),
            row({row({string(""), string("=SUM(B2:B3)"), string("=1/0")})}));
  EXPECT_EQ(get(property(codes::formulaR1C1, on("C2"))), string("=RC[-1]*2"));
  memory().setCell({"Known.xlsx", "Data"}, {"F1", CellError{"#N/A"}});
  EXPECT_EQ(get(property(codes::formula, on("F1"))), string("#N/A"));
}

TEST_F(Answers, GiveFormulasInTheUsersGrammar) {
  memory().setCell({"Known.xlsx", "Data"}, {"F1", 1.0, "=IF(A1,1,2)", "=WENN(A1;1;2)"});
  EXPECT_EQ(get(property(codes::formulaLocal, on("F1"))), string("=WENN(A1;1;2)"));
  EXPECT_EQ(get(property(codes::formulaLocal, on("A7"))), real(42));
}

TEST_F(Answers, GiveDisplayedTexts) {
  memory().setCell({"Known.xlsx", "Data"}, {"F1", 0.5, "", "", "50%"});
  EXPECT_EQ(get(property(codes::stringValue, on("F1"))), string("50%"));
  EXPECT_EQ(get(property(codes::stringValue, on("C3:C5"))),
            row({row({string("4")}), row({string("#DIV/0!")}), row({string("")})}));
}

TEST_F(Answers, TellWhetherAllCellsHaveFormulas) {
  EXPECT_EQ(get(property(codes::hasFormula, on("C2:C4"))), Descriptor::boolean(true));
  EXPECT_EQ(get(property(codes::hasFormula, on("A1:B2"))), Descriptor::boolean(false));
  EXPECT_EQ(get(property(codes::hasFormula, on("B2:C2"))), Descriptor::missingValue());
}

TEST_F(Answers, GiveIndicesAsIntegers) {
  EXPECT_EQ(get(property(codes::firstRowIndex, on("C4:D9"))), Descriptor::integer(4));
  EXPECT_EQ(get(property(codes::firstColumnIndex, on("C4:D9"))), Descriptor::integer(3));
  EXPECT_EQ(get(property(codes::entryIndex, odd())), Descriptor::integer(2));
  EXPECT_EQ(get(property(codes::countLarge, on("A1:B2,D4"))), Descriptor::integer(5));
}

TEST_F(Answers, GiveARangesSurroundings) {
  EXPECT_EQ(addressOf(property(codes::entireRow, on("B2:C3,D9"))), "$2:$3,$9:$9");
  EXPECT_EQ(addressOf(property(codes::entireColumn, on("B2:C3"))), "$B:$C");
  EXPECT_EQ(addressOf(property(codes::currentRegion, on("B2"))), "$A$1:$C$4");
  EXPECT_EQ(addressOf(property(codes::usedRange, data())), "$A$1:$E$10");
  EXPECT_EQ(get(property(codes::worksheetObject, on("B2"))), data());
  EXPECT_EQ(get(property(codes::areas, on("A1,C3:D4"))), row({on("$A$1"), on("$C$3:$D$4")}));
}

TEST_F(Answers, GiveDependentsOrMinus1708) {
  EXPECT_EQ(addressOf(property(codes::directDependents, on("B2"))), "$C$2,$B$4,$E$8");
  EXPECT_EQ(addressOf(property(codes::dependents, on("B2"))), "$C$2,$B$4,$E$8,$E$10");
  const AppleEventReply reply = send(getAddress(property(codes::dependents, on("A7"))));
  ASSERT_TRUE(reply.error);
  EXPECT_EQ(reply.error->number, -1708);
  EXPECT_EQ(reply.error->offender, on("$A$7"));
  EXPECT_EQ(errorOf(property(codes::directDependents, on("A7"))), -1708);
}

TEST_F(Answers, RefuseToReadMoreThanCanBeAnswered) {
  memory().script.clear();
  EXPECT_EQ(errorOf(property(codes::value2, on("A:XFD"))), -50);
  EXPECT_EQ(errorOf(property(codes::name, every(codes::cell, data()))), -50);
  EXPECT_EQ(errorOf(property(codes::formula, every(codes::column, on("A:C")))), -50);
  for (const std::string& call : memory().script.calls()) EXPECT_FALSE(call.starts_with("values"));
}

TEST_F(Answers, GiveTheWindowsRectangleAsIntegers) {
  memory().program.windows = {Bounds{10.4, 25, 1290.6, 800}};
  EXPECT_EQ(get(property(codes::bounds, indexed(codes::window, 1))),
            row({Descriptor::integer(10), Descriptor::integer(25), Descriptor::integer(1291),
                 Descriptor::integer(800)}));
  memory().program.windows = {std::nullopt};
  EXPECT_EQ(get(property(codes::bounds, indexed(codes::window, 1))), Descriptor::missingValue());
}

TEST_F(Answers, KnowWhichWorkbookAWindowShows) {
  memory().open({.name = "Second.xlsx", .sheets = {{"One", {}}}});
  EXPECT_EQ(get(property(codes::name, indexed(codes::window, 1))), string("Second.xlsx"));
  EXPECT_EQ(get(property(codes::name, indexed(codes::window, 2))), string("Known.xlsx"));
  EXPECT_EQ(get(named(codes::window, "Known.xlsx")), indexed(codes::window, 2));
  memory().activateWorkbook("Known.xlsx");
  EXPECT_EQ(get(property(codes::name, indexed(codes::window, 2))), string("Second.xlsx"));
  EXPECT_EQ(get(named(codes::window, "second.xlsx")), indexed(codes::window, 2));
  EXPECT_EQ(addressOf(property(codes::rangeSelection, property(codes::activeWindow))), "$A$1");
}

TEST_F(Answers, TellAboutTheProgram) {
  EXPECT_EQ(get(property(codes::name)), string("Microsoft Excel"));
  EXPECT_EQ(get(property(codes::version)), string("16.95"));
  EXPECT_EQ(get(property(codes::frontmost)), Descriptor::boolean(false));
}

}  // namespace
}  // namespace quorin::host
