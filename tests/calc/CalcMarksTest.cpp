// Highlights on a real Calc, all the way from the verbs.
#include <filesystem>
#include <gmock/gmock.h>
#include <signal.h>

#include "host/Address.h"
#include "host/calc/marks/MarkText.h"
#include "tests/calc/CalcRoad.h"
#include "tests/calc/KeeperProcess.h"
#include "tests/calc/UserHands.h"
#include "tests/calc/XlsxFile.h"
#include "tests/fakes/Eventually.h"
#include "tests/fakes/Files.h"
#include "tests/xlsx/ZipArchive.h"

namespace quorin::host::calc {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using Array = JSONValue::Array;
using Colour = std::vector<std::int64_t>;

// One office for all tests. What two connections of a process share belongs to the first of them,
// so the road's has to be that one.
struct Desk {
  TemporaryFolder folder;
  CalcRoad road;
  UserHands hands{connected().open()};

  PrivateOffice& connected() {
    road.use([](CalcSpreadsheet& calc) { calc.workbooks(); });
    return road.office();
  }

  void open(fakes::WorkbookDescription workbook, const std::string& name) {
    workbook.name = std::filesystem::path(name).filename();
    fakes::writeXlsx(workbook, folder / name);
    road.open(folder / name);
  }
};

std::unique_ptr<Desk> desk;

class CalcMarks : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    desk = std::make_unique<Desk>();
    desk->open(fakes::ruledWorkbook(), "Ruled.xlsx");
    desk->open(fakes::knownWorkbook(), "Known.xlsx");
  }
  static void TearDownTestSuite() { desk.reset(); }
  void SetUp() override { activate("Known.xlsx", "Data"); }
  void TearDown() override {
    EXPECT_THAT(ask("clearMarks"), HasSubstr("removed"));
    EXPECT_FALSE(std::filesystem::exists(desk->road.store().url()));
  }

  static std::string ask(const std::string& verb, Array args = {}) {
    return desk->road.ask(verb, args);
  }
  static std::string mark(const std::vector<std::string>& addrs) {
    return ask("markCells", {Array(addrs.begin(), addrs.end()), Array{255, 0, 0}});
  }
  static void activate(const std::string& book, const std::string& sheet) {
    desk->road.use([&](CalcSpreadsheet& calc) { calc.activateSheet({book, sheet}); });
  }
  static std::vector<FormatCondition> conditions(const std::string& book, const std::string& sheet,
                                                 bool ours) {
    std::vector<FormatCondition> found;
    desk->road.use([&](CalcSpreadsheet& calc) {
      found = calc.formatConditions({{book, sheet}, {{1, 1, maxRow, maxColumn}}});
    });
    std::erase_if(found, [&](const auto& each) { return (each.formula == markFormula) != ours; });
    return found;
  }
  static std::string marked(const std::string& book, const std::string& sheet) {
    std::string text;
    for (const FormatCondition& each : conditions(book, sheet, true))
      text += (text.empty() ? "" : "+") + addressText(each.areas);
    return text;
  }
  // All that a highlight must leave as it is.
  static std::string state(const std::string& book) {
    std::string text = desk->hands.stateOf(book);
    desk->road.use([&](CalcSpreadsheet& calc) {
      for (const auto& range : {calc.selection(), calc.activeCell(), calc.visibleRange()})
        text += range->sheet.sheet + addressText(range->areas) + "\n";
    });
    return text;
  }
};

TEST_F(CalcMarks, LeaveUndoRedoModifiedFlagSelectionAndViewAsTheyAre) {
  UserHands& hands = desk->hands;
  hands.enter("Known.xlsx", "Data", "H1", "first");
  hands.enter("Known.xlsx", "Data", "H2", "second");
  hands.undo("Known.xlsx");
  desk->road.use([](CalcSpreadsheet& calc) {
    calc.goTo({{"Known.xlsx", "Data"}, parseA1("B2:C3").value()});
  });
  for (const bool modified : {false, true}) {
    hands.setModified("Known.xlsx", modified);
    const std::string before = state("Known.xlsx");
    EXPECT_EQ(mark({"A1", "B2:C3", "Z900"}), R"({"applied":3,"shadowed":false})");
    EXPECT_EQ(state("Known.xlsx"), before);
    EXPECT_EQ(mark({"D4", "D6"}), R"({"applied":2,"moved":true,"shadowed":false})");
    EXPECT_EQ(state("Known.xlsx"), before);
    EXPECT_EQ(marked("Known.xlsx", "Data"), "$D$4,$D$6");
    EXPECT_EQ(ask("clearMarks"), R"({"removed":2})");
    EXPECT_EQ(state("Known.xlsx"), before);
    EXPECT_THAT(hands.shapes("Known.xlsx", "Data"), IsEmpty());
  }
  // The user's own steps still work both ways.
  mark({"A1"});
  hands.redo("Known.xlsx");
  hands.undo("Known.xlsx");
  hands.undo("Known.xlsx");
  EXPECT_EQ(marked("Known.xlsx", "Data"), "$A$1");
  ask("clearMarks");
  hands.setModified("Known.xlsx", false);
  mark({"A1"});
  hands.enter("Known.xlsx", "Data", "H1", "third");
  EXPECT_THAT(hands.stateOf("Known.xlsx"), HasSubstr("modified: 1"));
  hands.undo("Known.xlsx");
  hands.setModified("Known.xlsx", false);
}

TEST_F(CalcMarks, TakeTwoHundredAddressesAndNoMore) {
  std::vector<std::string> cells;
  for (int i = 0; i < 250; ++i)
    cells.push_back(columnLetters(1 + i * 7 % 50) + std::to_string(1 + i * 3));
  EXPECT_EQ(mark(cells), R"({"applied":200,"shadowed":false})");
  EXPECT_THAT(conditions("Known.xlsx", "Data", true), SizeIs(5));
  EXPECT_THAT(marked("Known.xlsx", "Data"), testing::EndsWith("$AR$598"));
  EXPECT_EQ(ask("clearMarks"), R"({"removed":200})");
  EXPECT_THAT(desk->hands.shapes("Known.xlsx", "Data"), IsEmpty());
}

TEST_F(CalcMarks, AreMagentaWithoutThreeColourParts) {
  desk->road.bridge().markCells({"A1"}, {1, 2});
  EXPECT_EQ(conditions("Known.xlsx", "Data", true).at(0).fill, (Color{255, 0, 255}));
}

TEST_F(CalcMarks, CountTheUsersRulesAndLeaveThemAlone) {
  activate("Ruled.xlsx", "Rules");
  const auto before = conditions("Ruled.xlsx", "Rules", false);
  ASSERT_THAT(before, SizeIs(3));
  EXPECT_EQ(before[0].fill, (Color{0xCC, 0xFF, 0xCC}));
  EXPECT_EQ(mark({"F1"}), R"({"applied":1,"shadowed":false})");
  EXPECT_EQ(mark({"B2", "G7"}), R"({"applied":2,"shadowed":true})") << "a move is declined here";
  EXPECT_THAT(desk->road.log(), Contains("HIGHLIGHT move declined result=[0,1]; clear+apply"));
  const auto painted = conditions("Ruled.xlsx", "Rules", true);
  ASSERT_THAT(painted, SizeIs(1));
  EXPECT_EQ(painted[0].priority, 4);
  EXPECT_EQ(painted[0].fill, (Color{255, 0, 0}));
  ask("clearMarks");
  EXPECT_EQ(conditions("Ruled.xlsx", "Rules", false), before);
  EXPECT_EQ(marked("Ruled.xlsx", "Rules"), "");
}

TEST_F(CalcMarks, NeverChangeARuleOfTheUsers) {
  const SheetRef rules{"Ruled.xlsx", "Rules"};
  const auto before = conditions("Ruled.xlsx", "Rules", false);
  const std::string id = before.at(0).id;
  int refused = 0;
  desk->road.use([&](CalcSpreadsheet& calc) {
    const RangeRef all{rules, {{1, 1, 99, 26}}};
    for (const auto& change : std::vector<std::function<void()>>{
             [&] { calc.setConditionFill(rules, id, Color{}); },
             [&] { calc.setConditionPriority(rules, id, 1); },
             [&] { calc.setConditionRange(all, id); }, [&] { calc.deleteCondition(all, id); }}) {
      try {
        change();
      } catch (const SpreadsheetError& error) {
        refused += error.number() == -10006 ? 1 : 0;
      }
    }
  });
  EXPECT_EQ(refused, 4);
  EXPECT_EQ(conditions("Ruled.xlsx", "Rules", false), before);
}

// As Excel saves a workbook while marks are on.
TEST_F(CalcMarks, TakeNoRuleOfAFileForTheirOwn) {
  fakes::WorkbookDescription workbook = fakes::ruledWorkbook();
  workbook.sheets[0].conditions = {{"B2", std::string(markFormula)}};
  desk->open(workbook, "FromExcel.xlsx");
  EXPECT_EQ(mark({"B2"}), R"({"applied":1,"shadowed":true})");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":1})");
  EXPECT_EQ(marked("FromExcel.xlsx", "Rules"), "");
  EXPECT_THAT(conditions("FromExcel.xlsx", "Rules", false), SizeIs(1));
  desk->hands.close("FromExcel.xlsx");
}

TEST_F(CalcMarks, StayInTheirWorkbookBesideOneWithASheetOfTheSameName) {
  desk->open(fakes::ruledWorkbook(), "Twin.xlsx");
  EXPECT_EQ(mark({"F1"}), R"({"applied":1,"shadowed":false})");
  EXPECT_EQ(marked("Twin.xlsx", "Rules"), "$F$1");
  EXPECT_EQ(marked("Ruled.xlsx", "Rules"), "");
  activate("Ruled.xlsx", "Rules");
  EXPECT_EQ(mark({"F2"}), R"({"applied":1,"shadowed":false})");
  EXPECT_EQ(marked("Twin.xlsx", "Rules"), "");
  EXPECT_EQ(marked("Ruled.xlsx", "Rules"), "$F$2");
  activate("Twin.xlsx", "Rules");
  mark({"F3"});
  desk->hands.close("Twin.xlsx");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":0})");
  EXPECT_EQ(marked("Ruled.xlsx", "Rules"), "");
}

TEST_F(CalcMarks, LieOnSeveralSheetsAlsoHiddenAndBlankOnes) {
  EXPECT_EQ(mark({"Blank!A1", "'It''s a test'!B2", "C3"}), R"({"applied":3,"shadowed":false})");
  EXPECT_EQ(marked("Known.xlsx", "Blank"), "$A$1,$C$3");
  EXPECT_EQ(marked("Known.xlsx", "It's a test"), "$B$2");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":3})");
  EXPECT_EQ(marked("Known.xlsx", "Blank") + marked("Known.xlsx", "It's a test"), "");
}

TEST_F(CalcMarks, ComeAndGoOnAProtectedSheet) {
  desk->hands.protect("Known.xlsx", "Data");
  desk->hands.setModified("Known.xlsx", false);
  const std::string before = state("Known.xlsx");
  EXPECT_EQ(mark({"A1", "B2"}), R"({"applied":2,"shadowed":false})");
  EXPECT_EQ(mark({"C3"}), R"({"applied":1,"moved":true,"shadowed":false})");
  EXPECT_EQ(marked("Known.xlsx", "Data"), "$C$3");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":1})");
  EXPECT_EQ(state("Known.xlsx"), before);
  EXPECT_THAT(desk->hands.shapes("Known.xlsx", "Data"), IsEmpty());
  desk->hands.unprotect("Known.xlsx", "Data");
}

TEST_F(CalcMarks, LieOnHiddenRowsToo) {
  const RangeRef rows{{"Known.xlsx", "Data"}, parseA1("5:6").value()};
  desk->road.use([&](CalcSpreadsheet& calc) { calc.setHidden(rows, Axis::rows, true); });
  EXPECT_EQ(mark({"A5:A6", "C6"}), R"({"applied":2,"shadowed":false})");
  EXPECT_EQ(marked("Known.xlsx", "Data"), "$A$5:$A$6,$C$6");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":2})");
  EXPECT_THAT(desk->hands.shapes("Known.xlsx", "Data"), IsEmpty());
  desk->road.use([&](CalcSpreadsheet& calc) { calc.setHidden(rows, Axis::rows, false); });
}

TEST_F(CalcMarks, AreSeenOnceTheirRowsAreShown) {
  desk->hands.hideRows("Known.xlsx", "Data", "A5:A6");
  mark({"A5:A6"});
  const int hidden = desk->hands.heightOfShapes("Known.xlsx", "Data");
  EXPECT_THAT(ask("reveal", {Array{"Data!A5:A6"}, 0}), Not(HasSubstr("failed")));
  const int shown = desk->hands.heightOfShapes("Known.xlsx", "Data");
  EXPECT_GT(shown, hidden + 500);
  ask("clearMarks");
  desk->hands.showRows("Known.xlsx", "Data", "A5:A6");
}

TEST_F(CalcMarks, GoFromAddressesThatBindAndPassOverTheOthers) {
  desk->road.use([](CalcSpreadsheet& calc) {
    calc.addFormatCondition({{"Known.xlsx", "Data"}, {Area{}}}, std::string(markFormula));
  });
  desk->road.store().recordApplied({{"Known.xlsx", "Data", {"NoSuchName", "A1"}, Colour{1, 2, 3}}});
  EXPECT_EQ(ask("clearMarks"), R"({"removed":2})");
  EXPECT_EQ(marked("Known.xlsx", "Data"), "");
  EXPECT_THAT(mark({"NoSuchName"}), HasSubstr("range does not exist: NoSuchName"));
  EXPECT_THAT(desk->road.store().load(), SizeIs(1)) << "recorded first";
}

TEST_F(CalcMarks, GoWhenTheyAreStackedAndWithWhatTheyHaveBeyondTheCellsAskedFor) {
  mark({"A1"});
  EXPECT_EQ(mark({"A1"}), R"({"applied":1,"shadowed":false})");
  EXPECT_EQ(marked("Known.xlsx", "Data"), "$A$1+$A$1");
  ask("clearMarks");
  EXPECT_THAT(desk->hands.shapes("Known.xlsx", "Data"), IsEmpty());
  mark({"A1:C3"});
  desk->road.store().recordApplied({{"Known.xlsx", "Data", {"B2"}, Colour{1, 2, 3}}});
  EXPECT_EQ(ask("clearMarks"), R"({"removed":1})");
  EXPECT_EQ(marked("Known.xlsx", "Data"), "");
}

TEST_F(CalcMarks, AreFoundAgainInAFileThatWasSavedWithThem) {
  const std::string name =
      markName({5, {std::string(markFormula), Color{255, 0, 0}, {{2, 2, 4, 2}}}});
  {
    PrivateOffice office;  // nothing but the office keeps anything out of its files
    UserHands hands(office.open());
    fakes::writeXlsx(fakes::knownWorkbook(), desk->folder / "Plain.xlsx");
    hands.open((desk->folder / "Plain.xlsx").string());
    hands.draw("Plain.xlsx", "Data", name);
    hands.draw("Plain.xlsx", "Data", "Mine");
    hands.saveAs("Plain.xlsx", (desk->folder / "Left.xlsx").string());
  }
  desk->road.open(desk->folder / "Left.xlsx");
  activate("Left.xlsx", "Data");
  EXPECT_EQ(marked("Left.xlsx", "Data"), "$B$2:$B$4");
  EXPECT_EQ(conditions("Left.xlsx", "Data", true).at(0).fill, (Color{255, 0, 0}));
  // A record of a part of it is enough.
  desk->road.store().recordApplied({{"Left.xlsx", "Data", {"B2"}, Colour{255, 0, 0}}});
  desk->road.bridge().restoreStranded();
  EXPECT_EQ(marked("Left.xlsx", "Data"), "");
  EXPECT_THAT(desk->hands.shapes("Left.xlsx", "Data"), ElementsAre("Mine"));
  EXPECT_THAT(desk->hands.stateOf("Left.xlsx"), HasSubstr("modified: 0"));
  desk->hands.close("Left.xlsx");
}

TEST_F(CalcMarks, SeeWhatHasChangedBetweenTwoRequests) {
  mark({"A1"});
  desk->hands.eraseShapes("Known.xlsx", "Data");
  mark({"A1"});
  EXPECT_EQ(marked("Known.xlsx", "Data"), "$A$1");
  desk->hands.eraseShapes("Known.xlsx", "Data");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":1})");
  EXPECT_THAT(desk->road.log(), Contains("HIGHLIGHT clear sheet=Data addrs=1 deleted=0"));
}

TEST_F(CalcMarks, HaveDifferentNamesOnDifferentSheets) {
  mark({"Blank!A1", "Data!A1"});
  const auto blank = desk->hands.shapes("Known.xlsx", "Blank");
  const auto data = desk->hands.shapes("Known.xlsx", "Data");
  ASSERT_THAT(blank, SizeIs(1));
  ASSERT_THAT(data, SizeIs(1));
  EXPECT_NE(blank, data);
  EXPECT_EQ(ask("clearMarks"), R"({"removed":2})");
}

TEST_F(CalcMarks, LeaveTheUsersDrawingsAlone) {
  desk->hands.draw("Known.xlsx", "Blank", "Quorin mark 3");
  desk->hands.draw("Known.xlsx", "Blank", "Arrow");
  mark({"Blank!A1", "Blank!B2"});
  EXPECT_THAT(desk->hands.shapes("Known.xlsx", "Blank"), SizeIs(3));
  EXPECT_EQ(ask("clearMarks"), R"({"removed":2})");
  EXPECT_THAT(desk->hands.shapes("Known.xlsx", "Blank"), ElementsAre("Quorin mark 3", "Arrow"));
}

// Nobody asks for anything after its death, but a new one is there for the next save.
TEST_F(CalcMarks, AreKeptOutOfFilesAfterTheirKeeperWasKilled) {
  desk->open(fakes::knownWorkbook(), "Kept.xlsx");
  activate("Kept.xlsx", "Data");
  mark({"Data!A1", "Blank!B2"});
  activate("Known.xlsx", "Data");
  const pid_t first = keeper();
  ASSERT_GT(first, 0);
  ::kill(first, SIGKILL);
  ASSERT_TRUE(eventually([&] { return hasNewKeeperAfter(first); }));
  desk->road.use([](CalcSpreadsheet&) {});  // the new one has found them
  desk->hands.saveAs("Kept.xlsx", (desk->folder / "Out.xlsx").string());
  for (const std::string& part : xlsx::ZipArchive(desk->folder / "Out.xlsx").names())
    EXPECT_THAT(part, Not(HasSubstr("drawing")));
  EXPECT_EQ(marked("Out.xlsx", "Data") + marked("Out.xlsx", "Blank"), "$A$1$B$2");
  ask("clearMarks");
  desk->hands.close("Out.xlsx");
}

TEST_F(CalcMarks, StayKnownBesideAWorkbookOfTheSameNameInAFolderOfTheSameName) {
  const std::string name = "2025/Plan.xlsx";
  const auto plan = [&](const char* in) {
    std::filesystem::create_directories(desk->folder / in / "2025");
    desk->open(fakes::knownWorkbook(), in + ("/" + name));
  };
  plan("x");
  EXPECT_EQ(ask("pollCell"), R"({"addr":"$A$1","book":"Plan.xlsx","sheet":"Data"})");
  EXPECT_THAT(mark({"B2"}), HasSubstr(R"("applied":1)"));
  plan("y");
  EXPECT_THAT(desk->hands.shapes("x/" + name, "Data"), SizeIs(1));
  EXPECT_EQ(ask("clearMarks"), R"({"removed":1})");
  EXPECT_THAT(desk->hands.shapes("x/" + name, "Data"), IsEmpty());

  EXPECT_THAT(mark({"C3"}), HasSubstr(R"("applied":1)"));
  EXPECT_THAT(desk->hands.shapes("x/" + name, "Data"), IsEmpty());
  EXPECT_THAT(desk->hands.shapes("y/" + name, "Data"), SizeIs(1));
  desk->hands.close("x/" + name);
  EXPECT_EQ(ask("clearMarks"), R"({"removed":1})");
  EXPECT_THAT(desk->hands.shapes("y/" + name, "Data"), IsEmpty());
  desk->hands.close("y/" + name);
}

TEST_F(CalcMarks, AskedForByANameGoWhileAnotherWorkbookIsInFront) {
  activate("Known.xlsx", "Blank");
  ASSERT_THAT(mark({"Spot", "A1"}), HasSubstr(R"("applied":2)"));
  ASSERT_THAT(desk->hands.shapes("Known.xlsx", "Data"), SizeIs(1));
  desk->road.use([](CalcSpreadsheet& calc) { calc.activateWorkbook("Ruled.xlsx"); });
  EXPECT_EQ(ask("clearMarks"), R"({"removed":2})");
  EXPECT_EQ(marked("Known.xlsx", "Data") + marked("Known.xlsx", "Blank"), "");
}

// What the records hold stays as it was asked for, whatever the user does to rows, sheets and
// names.
class MovedMarks : public CalcMarks {
 protected:
  void SetUp() override {
    desk->open(fakes::knownWorkbook(), "Moved.xlsx");
    activate("Moved.xlsx", "Blank");
    mark({"Data!A1", "Data!B2", "Data!B3"});
  }
  void TearDown() override {
    CalcMarks::TearDown();
    desk->hands.close(book);
  }
  // The next request draws the marks where their cells are, if the keeper has not done so yet.
  std::string here(const std::string& sheet) const { return marked(book, sheet); }

  std::string book = "Moved.xlsx";
};

TEST_F(MovedMarks, AreClearedWhereTheyAreNow) {
  desk->hands.insertRows(book, "Data", 1, 30);
  ASSERT_EQ(here("Data"), "$A$31,$B$32,$B$33");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":3})");
  EXPECT_THAT(desk->hands.shapes(book, "Data"), IsEmpty());
}

TEST_F(MovedMarks, AreMovedOnFromWhereTheyAreNow) {
  desk->hands.insertRows(book, "Data", 1, 3);
  ASSERT_EQ(here("Data"), "$A$4,$B$5,$B$6");
  EXPECT_THAT(mark({"Data!C1"}), HasSubstr(R"("moved":true)"));
  EXPECT_EQ(here("Data"), "$C$1");
}

TEST_F(MovedMarks, AreClearedOnCopiesOfTheirSheetInOtherWorkbooksToo) {
  desk->open({.name = {}, .sheets = {{"Only", {}}}}, "Other.xlsx");
  desk->hands.copySheetTo(book, "Data", "Other.xlsx");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":3})");
  EXPECT_THAT(desk->hands.shapes(book, "Data"), IsEmpty());
  EXPECT_THAT(desk->hands.shapes("Other.xlsx", "Data"), IsEmpty());
  desk->hands.close("Other.xlsx");
}

TEST_F(MovedMarks, AreClearedInAnOldWorkbookAndInTheNextOfItsName) {
  desk->hands.saveAs(book, (desk->folder / "Saved.xlsx").string());
  desk->open(fakes::knownWorkbook(), book);
  activate(book, "Blank");
  mark({"Data!A1", "Data!B2", "Data!B3"});  // what is recorded already
  ASSERT_THAT(desk->hands.shapes(book, "Data"), SizeIs(1));
  ask("clearMarks");
  EXPECT_THAT(desk->hands.shapes(book, "Data"), IsEmpty());
  EXPECT_THAT(desk->hands.shapes("Saved.xlsx", "Data"), IsEmpty());
  desk->hands.close("Saved.xlsx");
}

TEST_F(MovedMarks, AreClearedAddressByAddress) {
  desk->hands.insertRows(book, "Data", 1, 30);
  desk->road.use([&](CalcSpreadsheet& calc) {
    const auto delete_ = [&](const char* cells) {
      const RangeRef range{{book, "Data"}, parseA1(cells).value()};
      for (const FormatCondition& each : calc.formatConditions(range))
        if (each.formula == markFormula) calc.deleteCondition(range, each.id);
    };
    delete_("A1");
    EXPECT_EQ(desk->hands.shapes(book, "Data").size(), 1U);
    delete_("B2:B3");
  });
  EXPECT_THAT(desk->hands.shapes(book, "Data"), IsEmpty());
}

TEST_F(MovedMarks, GoWithTheRequestForANameThatIsGone) {
  ask("clearMarks");
  ASSERT_THAT(mark({"Spot"}), HasSubstr(R"("applied":1)"));
  ASSERT_THAT(desk->hands.shapes(book, "Data"), SizeIs(1));
  desk->hands.deleteName(book, "Spot");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":1})");
  EXPECT_THAT(desk->hands.shapes(book, "Data"), IsEmpty());
  EXPECT_FALSE(std::filesystem::exists(desk->road.store().url()));
}

TEST_F(MovedMarks, GoWithTheRequestForASheetThatHasAnotherName) {
  desk->hands.renameSheet(book, "Data", "Renamed");
  ASSERT_EQ(here("Renamed"), "$A$1,$B$2,$B$3");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":0})");
  EXPECT_THAT(desk->hands.shapes(book, "Renamed"), IsEmpty());
}

TEST_F(MovedMarks, GoWithTheRequestForASheetWhoseNameAnotherHas) {
  desk->hands.renameSheet(book, "Data", "Renamed");
  desk->hands.copySheet(book, "Blank", "Data");
  ASSERT_EQ(here("Renamed"), "$A$1,$B$2,$B$3");
  ask("clearMarks");
  EXPECT_THAT(desk->hands.shapes(book, "Renamed"), IsEmpty());
}

TEST_F(MovedMarks, GoWithTheRequestForAWorkbookThatHasAnotherName) {
  desk->hands.saveAs(book, (desk->folder / "Saved.xlsx").string());
  book = "Saved.xlsx";
  ASSERT_EQ(here("Data"), "$A$1,$B$2,$B$3");
  EXPECT_EQ(ask("clearMarks"), R"({"removed":0})");
  EXPECT_THAT(desk->hands.shapes(book, "Data"), IsEmpty());
}

}  // namespace
}  // namespace quorin::host::calc
