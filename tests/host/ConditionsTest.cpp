// Format conditions, hidden lines, names, scrolling and workbooks of our own as events.
#include "tests/host/ObjectModelFixture.h"

namespace quorin::host {
namespace {

using namespace events;

class Conditions : public ObjectModelTest {
 protected:
  void SetUp() override { memory().open(fakes::ruledWorkbook()); }

  static Descriptor at(std::string address) {
    return range(std::move(address), worksheet("Rules", workbook("Ruled.xlsx")));
  }
  static Descriptor condition(int index, std::string address) {
    return indexed(codes::formatCondition, index, at(std::move(address)));
  }
  static AppleEvent make(Descriptor place, std::string formula = "=TRUE") {
    return event(
        codes::coreSuite, codes::make,
        {{codes::makeNew, Descriptor::typeCode(codes::formatCondition)},
         {codes::makeAt, std::move(place)},
         {codes::makeWithProperties,
          Descriptor::record({{codes::conditionType, Descriptor::enumerator(codes::expression)},
                              {codes::formula1, Descriptor::text(std::move(formula))}})}});
  }
  static AppleEvent set(Descriptor object, Descriptor value) {
    return event(codes::coreSuite, codes::set,
                 {{keyDirectObject, std::move(object)}, {codes::setTo, std::move(value)}});
  }
  static AppleEvent remove(Descriptor object) {
    return event(codes::coreSuite, codes::deleteObject, {{keyDirectObject, std::move(object)}});
  }
  Descriptor count(std::string address) {
    return ask(event(codes::coreSuite, codes::count,
                     {{keyDirectObject, at(std::move(address))},
                      {codes::countEach, Descriptor::typeCode(codes::formatCondition)}}));
  }
};

TEST_F(Conditions, TellWhatTheyAre) {
  EXPECT_EQ(count("B2:D2"), Descriptor::integer(2));
  EXPECT_EQ(count("F9"), Descriptor::integer(0));
  EXPECT_EQ(get(property(codes::formula1, condition(1, "B2"))), Descriptor::text("=$B2>1"));
  EXPECT_EQ(get(property(codes::conditionType, condition(1, "B2"))),
            Descriptor::enumerator(codes::expression));
  EXPECT_EQ(get(property(codes::conditionType, condition(1, "D2"))),
            Descriptor::enumerator(codes::cellValue));
  EXPECT_EQ(addressOf(property(codes::appliesTo, condition(1, "B3"))), "$B$2:$B$5");
  EXPECT_EQ(errorOf(condition(2, "B2")), -1728);
}

TEST_F(Conditions, AreMadeColouredAndDeleted) {
  const Descriptor made = ask(make(at("B2:B3,F9")));
  EXPECT_EQ(made, condition(2, "$B$2:$B$3,$F$9"));
  ask(set(property(codes::color, property(codes::interiorObject, made)),
          row({Descriptor::integer(1), Descriptor::integer(2), Descriptor::integer(255)})));
  EXPECT_EQ(get(property(codes::color, property(codes::interiorObject, condition(1, "F9")))),
            row({Descriptor::integer(1), Descriptor::integer(2), Descriptor::integer(255)}));
  ask(remove(condition(1, "F9")));
  EXPECT_EQ(count("F9"), Descriptor::integer(0));
  EXPECT_EQ(count("B2"), Descriptor::integer(2));
  ask(remove(every(codes::formatCondition, at("B2:B5"))));
  EXPECT_EQ(count("B2:B5"), Descriptor::integer(0));
  EXPECT_EQ(errorOf(remove(every(codes::formatCondition, at("B2:B5")))), -1728);
}

TEST_F(Conditions, AreMadeAtTheEndToo) {
  ask(make(Descriptor::withFields(codes::insertion, {{codes::insertionObject, at("F9")}})));
  EXPECT_EQ(count("F9"), Descriptor::integer(1));
  EXPECT_EQ(errorOf(make(workbook("Ruled.xlsx"))), -10024);
  EXPECT_EQ(errorOf(make(at("F9"), {})), 0);
}

TEST_F(Conditions, RefuseColoursThatAreNone) {
  const Descriptor made = ask(make(at("F9")));
  const Descriptor color = property(codes::color, property(codes::interiorObject, made));
  EXPECT_EQ(errorOf(set(color, Descriptor::text("#FFFF00"))), -10006);
  EXPECT_EQ(errorOf(set(color, row({Descriptor::integer(1), Descriptor::integer(2)}))), -10006);
  const Descriptor full = Descriptor::integer(65535);
  EXPECT_EQ(errorOf(set(color, row({full, full, full}))), -10006);
}

TEST_F(Conditions, ComeFirstWhenTheirPrioritySaysSo) {
  const Descriptor made = ask(make(at("B2")));
  ask(set(property(codes::conditionPriority, made), Descriptor::integer(1)));
  EXPECT_EQ(get(property(codes::formula1, condition(1, "B2"))), Descriptor::text("=TRUE"));
  EXPECT_EQ(get(property(codes::formula1, condition(2, "B2"))), Descriptor::text("=$B2>1"));
  ask(event(codes::excelSuite, codes::setFirstPriority, {{keyDirectObject, condition(2, "B2")}}));
  EXPECT_EQ(get(property(codes::formula1, condition(1, "B2"))), Descriptor::text("=$B2>1"));
  EXPECT_EQ(errorOf(set(property(codes::conditionPriority, made), Descriptor::integer(0))), -50);
}

TEST_F(Conditions, MoveToOtherCells) {
  ask(make(at("F9")));
  const auto move = [&](Descriptor to) {
    return event(codes::excelSuite, codes::modifyAppliesToRange,
                 {{keyDirectObject, condition(1, "F9")}, {codes::modifyRange, std::move(to)}});
  };
  EXPECT_EQ(errorOf(move(on("A1"))), -50);
  ask(move(at("G1:G3")));
  EXPECT_EQ(count("F9"), Descriptor::integer(0));
  EXPECT_EQ(count("G2"), Descriptor::integer(1));
}

TEST_F(Conditions, HideRowsAndColumns) {
  const Descriptor three = property(codes::hidden, on("3:3"));
  ask(set(three, Descriptor::boolean(true)));
  EXPECT_EQ(get(three), Descriptor::boolean(true));
  EXPECT_EQ(get(property(codes::hidden, property(codes::entireRow, on("A2:B3")))),
            Descriptor::missingValue());
  EXPECT_EQ(get(property(codes::hidden, property(codes::entireColumn, on("A2:B3")))),
            Descriptor::boolean(false));
  EXPECT_EQ(get(property(codes::hidden, on("A3:B3"))), Descriptor::missingValue());
  EXPECT_EQ(errorOf(set(property(codes::hidden, on("A3")), Descriptor::boolean(true))), -10006);
  const auto visible = [](Descriptor where) {
    return event(codes::tableSuite, codes::specialCells,
                 {{keyDirectObject, std::move(where)},
                  {codes::specialCellsType, Descriptor::enumerator(codes::cellTypeVisible)}});
  };
  EXPECT_EQ(ask(visible(on("A2:B4"))), on("$A$2:$B$2,$A$4:$B$4"));
  EXPECT_EQ(errorOf(visible(on("A3:B3"))), -50);
}

TEST_F(Conditions, ListNames) {
  const Descriptor book = workbook("Known.xlsx");
  EXPECT_EQ(get(property(codes::name, every(codes::namedItem, book))),
            row({Descriptor::text("Factor"), Descriptor::text("Prices"), Descriptor::text("Spot"),
                 Descriptor::text("'It''s a test'!Spot")}));
  EXPECT_EQ(get(property(codes::references, named(codes::namedItem, "prices", book))),
            Descriptor::text("=Data!$B$2:$B$3"));
  EXPECT_EQ(addressOf(property(codes::referenceRange, indexed(codes::namedItem, 2, book))),
            "$B$2:$B$3");
  EXPECT_EQ(errorOf(property(codes::referenceRange, named(codes::namedItem, "Factor", book))),
            -1728);
  EXPECT_EQ(get(property(codes::name, every(codes::namedItem, workbook("Ruled.xlsx")))),
            Descriptor::missingValue());
}

TEST_F(Conditions, ScrollTheWindow) {
  const auto window = [](FourCharCode code) {
    return property(code, property(codes::activeWindow));
  };
  ask(set(window(codes::scrollRow), Descriptor::integer(45)));
  ask(set(window(codes::scrollColumn), Descriptor::integer(3)));
  EXPECT_EQ(get(window(codes::scrollRow)), Descriptor::integer(45));
  EXPECT_EQ(addressOf(window(codes::visibleRange)), "$C$45:$N$74");
  EXPECT_EQ(errorOf(set(window(codes::scrollRow), Descriptor::integer(0))), -50);
  memory().close("Ruled.xlsx");
  memory().close("Known.xlsx");
  EXPECT_EQ(get(window(codes::visibleRange)), Descriptor::missingValue());
}

TEST_F(Conditions, MakeAndCloseWorkbooks) {
  const Descriptor made = ask(event(codes::coreSuite, codes::make,
                                    {{codes::makeNew, Descriptor::typeCode(codes::workbook)}}));
  EXPECT_EQ(made, workbook("Book1"));
  const Descriptor cell = range("A1", indexed(codes::worksheet, 1, made));
  ask(set(property(codes::formula2, cell), Descriptor::text("=1+1")));
  EXPECT_EQ(get(property(codes::value2, cell)), Descriptor::real(2));
  EXPECT_EQ(errorOf(set(property(codes::formula2, on("A1")), Descriptor::text("=1"))), -10006);
  const auto close = [](Descriptor book, AppleEventDescriptor::Fields more) {
    more.push_back({keyDirectObject, std::move(book)});
    return event(codes::coreSuite, codes::close, std::move(more));
  };
  EXPECT_EQ(errorOf(close(made, {})), -50);
  ask(close(made, {{codes::closeSaving, Descriptor::enumerator(codes::no)}}));
  EXPECT_EQ(errorOf(made), -1728);
  EXPECT_EQ(errorOf(close(workbook("Known.xlsx"),
                          {{codes::closeSaving, Descriptor::enumerator(codes::no)}})),
            -10006);
}

}  // namespace
}  // namespace quorin::host
