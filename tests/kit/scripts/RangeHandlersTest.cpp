// qx_readrange, qx_errcol, qx_readformulas, and the binding of addresses.
#include "host/model/Codes.h"
#include "tests/fakes/QuirkyAnswers.h"
#include "tests/kit/scripts/LibraryFixture.h"

namespace quorin {
namespace {

using RangeHandlers = LibraryFixture;

TEST_F(RangeHandlers, ReadRangeGivesValuesDimensionsAndTexts) {
  EXPECT_EQ(run("qx_readrange", {"A1:B3"}),
            R"j([[["Item","Price"],["Bolt",1.5],["Nut",2]],3,2,)j"
            R"j([["Item","Price"],["Bolt","1.5"],["Nut","2"]],6])j");
  EXPECT_EQ(run("qx_readrange", {"$B$2"}), R"j([1.5,1,1,"1.5",1])j");
}

TEST_F(RangeHandlers, ReadRangeRefusesMoreThan20000CellsWithoutReadingAny) {
  memory_->script.clear();
  excel_->forget();
  EXPECT_EQ(run("qx_readrange", {"A1:A20001"}), R"j(["__TOOBIG",20001,1,20001])j");
  EXPECT_EQ(run("qx_readformulas", {"A1:A20001", "a1", false}), R"j(["__TOOBIG",20001,1,20001])j");
  EXPECT_EQ(run("qx_readrange", {"A:B"}), R"j(["__TOOBIG",1048576,2,2097152])j");
  EXPECT_EQ(valueReads(), 0);
  EXPECT_FALSE(excel_->events().empty());
  for (const AppleEvent& event : excel_->events()) {
    const FourCharCode read = fakes::propertyRead(event);
    EXPECT_TRUE(read != host::codes::value2 && read != host::codes::value &&
                read != host::codes::stringValue && read != host::codes::formula);
  }
  run("qx_readrange", {"A1"});
  EXPECT_EQ(fakes::propertyRead(excel_->events().back()), host::codes::value2);
}

TEST_F(RangeHandlers, Read20000CellsAndNoMore) {
  EXPECT_THAT(run("qx_readrange", {"A1:A20000"}), testing::EndsWith(R"j(,20000,1,"",20000])j"));
  EXPECT_THAT(run("qx_readformulas", {"A1:A20000", "a1", false}),
              testing::EndsWith(R"j(,20000,1,"",20000])j"));
  EXPECT_THAT(run("qx_readformulas", {"A1:A20000", "a1", true}), testing::EndsWith(",20000,1]"));
}

// More cells than can be counted are one thing, an Excel that does not answer is another.
TEST_F(RangeHandlers, TakesNoTimeoutForACount) {
  const auto asks = [&] { return run("qx_readrange", {"A1:A20001,C1"}); };
  EXPECT_EQ(asks(), R"j(["__TOOBIG",20001,1,20002])j");
  excel_->forget();
  asks();
  const int events = static_cast<int>(excel_->events().size());
  for (int number = 1; number <= events; ++number) {
    excel_->forget();
    excel_->failAt(number, {-1712, "AppleEvent timed out.", {}});
    EXPECT_EQ(asks(), "error -1712 Microsoft Excel got an error: AppleEvent timed out.") << number;
  }
}

TEST_F(RangeHandlers, ReadRangeRefusesUnionsWithoutReadingThem) {
  memory_->script.clear();
  EXPECT_EQ(run("qx_readrange", {"A1:A2,C3:C4"}), R"j(["__MULTI",2,1,4])j");
  EXPECT_EQ(run("qx_readformulas", {"A1:A2,C3:C4", "a1", false}), R"j(["__MULTI",2,1,4])j");
  EXPECT_EQ(valueReads(), 0);
}

TEST_F(RangeHandlers, ReadRangeNeverKillsExcelWithAnErrorInTheFirstColumn) {
  excel_->quirks.diesOfFirstColumnErrors = true;
  excel_->quirks.dropsErrorRows = true;
  EXPECT_EQ(run("qx_readrange", {"C2:D4"}), R"j(["__ERRCOL",3,2,6])j");
  EXPECT_EQ(run("qx_readrange", {"C4:D4"}), R"j(["__ERRCOL",1,2,2])j");
  EXPECT_EQ(run("qx_readformulas", {"C2:D4", "a1", false}),
            R"j([[["=B2*2",""],["=B3*2",""],["=1\/0",""]],"__ERRCOL",3,2,"",6])j");
  EXPECT_EQ(run("qx_pollcell"), R"j(["Known.xlsx","Data","$A$1"])j") << "Excel lives";
}

TEST_F(RangeHandlers, ReadRangeFindsTheOneValueOfItsFirstColumnInAList) {
  excel_->quirks.listsSingleValues = true;
  EXPECT_EQ(run("qx_readrange", {"B2:C2"}), R"j([[[1.5,3]],1,2,[["1.5","3"]],2])j");
  EXPECT_EQ(run("qx_readrange", {"C4:D4"}), R"j(["__ERRCOL",1,2,2])j");
}

TEST_F(RangeHandlers, ReadRangeSeesTheErrorOfAColumnTooNarrowToShowIt) {
  excel_->quirks.diesOfFirstColumnErrors = true;
  excel_->quirks.dropsErrorRows = true;
  const host::CellError error{"#DIV/0!"};
  memory_->setCell({"Known.xlsx", "Blank"}, {"A1", 1.0});
  memory_->setCell({"Known.xlsx", "Blank"}, {"A2", error, "=1/0", "", "###"});
  memory_->setCell({"Known.xlsx", "Blank"}, {"A3", 3.0});
  EXPECT_EQ(run("qx_readrange", {"Blank!A1:B3"}), R"j(["__ERRCOL",3,2,6])j");
  EXPECT_EQ(run("qx_readrange", {"Blank!A2:B2"}), R"j(["__ERRCOL",1,2,2])j");
}

TEST_F(RangeHandlers, ReadRangeSeesTheErrorByItsTextWhereNoRowIsDropped) {
  EXPECT_EQ(run("qx_readrange", {"C2:D4"}), R"j(["__ERRCOL",3,2,6])j");
}

TEST_F(RangeHandlers, ReadRangeReadsAColumnWithErrorsAsExcelGivesIt) {
  excel_->quirks.dropsErrorRows = true;
  EXPECT_EQ(run("qx_readrange", {"C2:C4"}), R"j([[[3],[4]],3,1,[["3"],["4"],["#DIV\/0!"]],3])j");
}

TEST_F(RangeHandlers, ReadRangeLeavesTextsOutAbove5000Cells) {
  const std::string whole = run("qx_readrange", {"A1:A5000"});
  const std::string without = run("qx_readrange", {"A1:A5001"});
  EXPECT_THAT(whole, testing::EndsWith(R"j([""]],5000])j"));
  EXPECT_THAT(without, testing::EndsWith(R"j([""]],5001,1,"",5001])j"));
}

TEST_F(RangeHandlers, ReadFormulasLeavesTextsOutAbove5000Cells) {
  EXPECT_THAT(run("qx_readformulas", {"A1:A5000", "a1", false}),
              testing::EndsWith(R"j([""]],5000])j"));
  EXPECT_THAT(run("qx_readformulas", {"A1:A5001", "a1", false}),
              testing::EndsWith(R"j([""]],5001,1,"",5001])j"));
}

TEST_F(RangeHandlers, ReadFormulasGivesFormulasInTheStyleAskedFor) {
  EXPECT_EQ(run("qx_readformulas", {"B4", "a1", true}), R"j(["=SUM(B2:B3)",1,1])j");
  EXPECT_EQ(run("qx_readformulas", {"B4", "r1c1", true}), R"j(["=SUM(R[-2]C:R[-1]C)",1,1])j");
}

TEST_F(RangeHandlers, ReadFormulasReadsNoValuesWhenFormulasAreAllThatIsWanted) {
  memory_->script.clear();
  EXPECT_EQ(run("qx_readformulas", {"C2:D4", "a1", true}),
            R"j([[["=B2*2",""],["=B3*2",""],["=1\/0",""]],3,2])j");
  EXPECT_EQ(valueReads(), 0);
}

TEST_F(RangeHandlers, ReadFormulasGivesValuesAndTextsToo) {
  EXPECT_EQ(run("qx_readformulas", {"B2:B4", "a1", false}),
            R"j([[[1.5],[2],["=SUM(B2:B3)"]],[[1.5],[2],[3.5]],3,1,[["1.5"],["2"],["3.5"]],3])j");
}

TEST_F(RangeHandlers, ErrcolLooksAtTextsCaseSensitively) {
  memory_->setCell({"Known.xlsx", "Blank"}, {"A1", "#n/a"});
  memory_->setCell({"Known.xlsx", "Blank"}, {"A2", "#N/A"});
  EXPECT_EQ(run("qx_readrange", {"Blank!A1:B1"}), R"j([[["#n\/a",""]],1,2,[["#n\/a",""]],2])j");
  EXPECT_EQ(run("qx_readrange", {"Blank!A1:B2"}), R"j(["__ERRCOL",2,2,4])j");
}

TEST_F(RangeHandlers, BindsAddressesOfOtherSheets) {
  select("Blank", "A1");
  EXPECT_EQ(run("qx_readrange", {"Data!B2"}), R"j([1.5,1,1,"1.5",1])j");
  EXPECT_EQ(run("qx_readrange", {"data!B2"}), R"j([1.5,1,1,"1.5",1])j");
  EXPECT_EQ(run("qx_readrange", {"'It''s a test'!B2"}), R"j(["x",1,1,"x",1])j");
  EXPECT_EQ(run("qx_readrange", {"[Known.xlsx]Data!$B$2"}), R"j([1.5,1,1,"1.5",1])j");
  EXPECT_EQ(run("qx_readrange", {"'[Known.xlsx]It''s a test'!B2"}), R"j(["x",1,1,"x",1])j");
  EXPECT_EQ(run("qx_readrange", {"Prices"}), R"j([[[1.5],[2]],2,1,[["1.5"],["2"]],2])j");
}

// An Excel that does not bind "B2:Data!B3" on the sheet binds the whole of it.
TEST_F(RangeHandlers, BindsAnAddressThatNamesItsSheetAtBothEnds) {
  const std::string told = R"j([[[1.5],[2]],2,1,[["1.5"],["2"]],2])j";
  const auto asks = [&] { return run("qx_readrange", {"Data!B2:Data!B3"}); };
  excel_->forget();
  EXPECT_EQ(asks(), told);
  const int events = static_cast<int>(excel_->events().size());
  int others = 0;
  for (int number = 1; number <= events; ++number) {
    excel_->forget();
    excel_->failAt(number, {-1728, "Can't get range.", {}});
    if (asks() == told) ++others;
  }
  EXPECT_EQ(others, 1);
}

// In brackets, and there alone, a quote escapes what follows it.
TEST_F(RangeHandlers, TakesNoMarkInBracketsForTheEndOfASheet) {
  for (const char* const column : {"T1[a!b]", "T[a']!b]"})
    EXPECT_THAT(run("qx_readrange", {column}), testing::Not(testing::HasSubstr("sheet not found")));
  EXPECT_EQ(run("qx_readrange", {"O'!A1"}), "error -1728 sheet not found: O'");
}

TEST_F(RangeHandlers, AsksForNoSheetThatTheWorkbookLacks) {
  memory_->script.clear();
  EXPECT_EQ(run("qx_readrange", {"Nowhere!A1"}), "error -1728 sheet not found: Nowhere");
  EXPECT_EQ(run("qx_readrange", {"'No, where'!A1"}), "error -1728 sheet not found: No, where");
  EXPECT_EQ(run("qx_readrange", {"[Other.xlsx]Data!A1"}),
            "error -1728 workbook not open: Other.xlsx");
  EXPECT_THAT(run("qx_readrange", {"#REF!"}), testing::StartsWith("error -1728 "));
  EXPECT_EQ(valueReads(), 0);
}

}  // namespace
}  // namespace quorin
