// Scripts that drive Excel, from their text to their answers, over a spreadsheet in memory.
#include <gtest/gtest.h>

#include "host/Address.h"
#include "host/EngineRunner.h"
#include "host/model/ExcelObjectModel.h"
#include "kit/value/Marshal.h"
#include "tests/fakes/MemorySpreadsheet.h"

namespace quorin::host {
namespace {

constexpr const char* library = R"script(
on whatIsOpen()
  tell application "Microsoft Excel"
    with timeout of 2 seconds
      if (count of workbooks) is 0 then return {"noWorkbook", 0, 0, 0, 0}
      set box4 to bounds of window 1
      return {"ok", item 1 of box4, item 2 of box4, item 3 of box4, item 4 of box4}
    end timeout
  end tell
end whatIsOpen

on whereAmI()
  tell application "Microsoft Excel"
    with timeout of 2 seconds
      return {name of active workbook, name of active sheet, (get address of active cell)}
    end timeout
  end tell
end whereAmI

on describeCell()
  tell application id "com.microsoft.Excel"
    with timeout of 3 seconds
      set spot to active cell
      return {name of active workbook, name of active sheet, (get address of spot), ¬
        first row index of spot, first column index of spot, formula of spot, ¬
        formula local of spot, value2 of spot, (get address of selection), ¬
        (get address of (current region of spot))}
    end timeout
  end tell
end describeCell

on workOut(txt)
  tell application "Microsoft Excel"
    with timeout of 8 seconds
      return (evaluate name txt)
    end timeout
  end tell
end workOut

on pickAll(wanted)
  tell application "Microsoft Excel"
    with timeout of 3 seconds
      set gathered to range (item 1 of wanted)
      goto reference gathered
      repeat with k from 2 to (count of wanted)
        set gathered to union range1 gathered range2 (range (item k of wanted))
      end repeat
      if (count of wanted) > 1 then select gathered
      return (get address of selection)
    end timeout
  end tell
end pickAll

on goThere(wanted)
  tell application "Microsoft Excel"
    with timeout of 3 seconds
      if wanted is not "" then goto reference (range wanted)
      activate
      return true
    end timeout
  end tell
end goThere

on whoUses(wanted)
  tell application "Microsoft Excel"
    with timeout of 3 seconds
      try
        return (get address of (direct dependents of (range wanted)))
      on error number -1708
        return ""
      end try
    end timeout
  end tell
end whoUses

on readAll(wanted)
  tell application "Microsoft Excel"
    with timeout of 3 seconds
      set found to range wanted
      set rowN to count of rows of found
      set colN to count of columns of found
      return {value2 of found, rowN, colN, string value of found, count of cells of found}
    end timeout
  end tell
end readAll

on sheetNames()
  tell application "Microsoft Excel"
    with timeout of 3 seconds
      set found to name of every worksheet of active workbook
      set dims to {}
      repeat with k from 1 to (count of found)
        set end of dims to (get address of (used range of worksheet k of active workbook))
      end repeat
      return {found, dims}
    end timeout
  end tell
end sheetNames
)script";

// Remembers under which terms its handlers ran.
class TermsSpreadsheet : public fakes::MemorySpreadsheet {
 public:
  void handlerBegins(const CallTerms& terms) override { asked.push_back(terms.asked); }
  void handlerEnds() override { ++ended; }

  std::vector<bool> asked;
  int ended = 0;
};

class EngineRunnerTest : public ::testing::Test {
 protected:
  EngineRunnerTest() {
    auto owned = std::make_unique<fakes::MemorySpreadsheet>();
    memory_ = owned.get();
    memory_->script.useClock(&clock_);
    memory_->open(fakes::knownWorkbook());
    runner_ = std::make_unique<EngineRunner>(
        std::make_unique<ExcelObjectModel>(std::move(owned), [this] { return clock_.now(); }));
  }

  void SetUp() override {
    const auto error = runner_->compile(library);
    ASSERT_FALSE(error) << error->message.value_or("");
  }

  static AppleEvent call(std::string handler, JSONValue::Array arguments) {
    AppleEvent event{fourCharCode("ascr"), fourCharCode("psbr"), {}, {}};
    event.parameters.push_back(
        {fourCharCode("snam"), AppleEventDescriptor::text(std::move(handler))});
    event.parameters.push_back({keyDirectObject, Marshal::toDescriptor(std::move(arguments))});
    return event;
  }

  // The answer as JSON text, or "error " and its number.
  std::string run(std::string handler, JSONValue::Array arguments = {}) {
    const ScriptReply reply = runner_->execute(call(std::move(handler), std::move(arguments)));
    if (reply.error) return "error " + std::to_string(reply.error->number.value_or(0));
    return Marshal::encode(
        Marshal::fromDescriptor(reply.result.value_or(AppleEventDescriptor::null())));
  }

  void select(const char* sheet, const char* address) {
    memory_->goTo({{"Known.xlsx", sheet}, parseA1(address).value()});
  }

  fakes::ManualClock clock_;
  fakes::MemorySpreadsheet* memory_ = nullptr;
  std::unique_ptr<EngineRunner> runner_;
};

TEST_F(EngineRunnerTest, ProbesTheProgram) {
  EXPECT_EQ(run("whatisopen"), R"j(["ok",0,25,1280,800])j");
  memory_->close("Known.xlsx");
  EXPECT_EQ(run("whatIsOpen"), R"j(["noWorkbook",0,0,0,0])j");
}

TEST_F(EngineRunnerTest, TellsTheActiveCell) {
  select("It's a test", "B2");
  EXPECT_EQ(run("whereAmI"), R"j(["Known.xlsx","It's a test","$B$2"])j");
}

TEST_F(EngineRunnerTest, AsksTheSpreadsheetOnceForEachPartOfTheActiveCell) {
  memory_->script.clear();
  run("whereAmI");
  EXPECT_EQ(memory_->script.calls(),
            (std::vector<std::string>{"activeWorkbook", "activeSheet", "activeCell"}));
}

TEST_F(EngineRunnerTest, DescribesAFormulaCell) {
  select("Data", "B4:C4");
  EXPECT_EQ(
      run("describeCell"),
      R"j(["Known.xlsx","Data","$B$4",4,2,"=SUM(B2:B3)","=SUM(B2:B3)",3.5,"$B$4:$C$4","$A$1:$C$4"])j");
}

TEST_F(EngineRunnerTest, DescribesConstantsBlanksAndErrors) {
  select("Data", "A7");
  EXPECT_EQ(run("describeCell"), R"j(["Known.xlsx","Data","$A$7",7,1,42,42,42,"$A$7","$A$7"])j");
  select("Data", "H20");
  EXPECT_EQ(run("describeCell"),
            R"j(["Known.xlsx","Data","$H$20",20,8,"","","","$H$20","$H$20"])j");
  select("Data", "C4");
  EXPECT_EQ(run("describeCell"),
            R"j(["Known.xlsx","Data","$C$4",4,3,"=1\/0","=1\/0",null,"$C$4","$A$1:$C$4"])j");
}

TEST_F(EngineRunnerTest, Evaluates) {
  select("Data", "A1");
  EXPECT_EQ(run("workOut", {"B2*2"}), "3");
  EXPECT_EQ(run("workOut", {"B2>1"}), "true");
  EXPECT_EQ(run("workOut", {"{1,2;3,4}"}), "[[1,2],[3,4]]");
  EXPECT_EQ(run("workOut", {"1/0"}), "error -1708");
  EXPECT_EQ(run("workOut", {"IFERROR(1/0,\"__ERR:\"&ERROR.TYPE(1/0))"}), "\"__ERR:2\"");
}

TEST_F(EngineRunnerTest, SelectsSeveralRanges) {
  EXPECT_EQ(run("pickAll", {JSONValue::Array{"B2"}}), "\"$B$2\"");
  EXPECT_EQ(run("pickAll", {JSONValue::Array{"'It''s a test'!A1", "'It''s a test'!C3:D4"}}),
            "\"$A$1,$C$3:$D$4\"");
  EXPECT_EQ(memory_->activeSheet(), (SheetRef{"Known.xlsx", "It's a test"}));
  EXPECT_EQ(run("pickAll", {JSONValue::Array{"Data!A1", "Blank!A1"}}), "error -50");
  EXPECT_EQ(run("pickAll", {JSONValue::Array{"Nowhere!A1"}}), "error -1728");
}

TEST_F(EngineRunnerTest, GoesToACellAndComesForward) {
  EXPECT_EQ(run("goThere", {"Prices"}), "true");
  EXPECT_TRUE(memory_->program.frontmost);
  EXPECT_EQ(run("whereAmI"), R"j(["Known.xlsx","Data","$B$2"])j");
  EXPECT_EQ(run("goThere", {""}), "true");
  EXPECT_EQ(run("whereAmI"), R"j(["Known.xlsx","Data","$B$2"])j");
}

TEST_F(EngineRunnerTest, ListsDependents) {
  EXPECT_EQ(run("whoUses", {"B2"}), "\"$C$2,$B$4,$E$8\"");
  EXPECT_EQ(run("whoUses", {"A7"}), "\"\"");
  EXPECT_EQ(run("whoUses", {"junk"}), "error -1728");
}

TEST_F(EngineRunnerTest, ReadsGridsWithTheirSize) {
  EXPECT_EQ(run("readAll", {"A2:B3"}),
            R"j([[["Bolt",1.5],["Nut",2]],2,2,[["Bolt","1.5"],["Nut","2"]],4])j");
  EXPECT_EQ(run("readAll", {"A7"}), R"j([42,1,1,"42",1])j");
}

TEST_F(EngineRunnerTest, ListsSheetsAndTheirUsedRanges) {
  EXPECT_EQ(run("sheetNames"),
            R"j([["Data","It's a test","Blank"],["$A$1:$E$10","$A$1:$B$2","$A$1"]])j");
}

TEST_F(EngineRunnerTest, GivesExcelsTimeOutAsAScriptError) {
  memory_->script.atEvery("activeCell", {.takes = std::chrono::seconds(3)});
  const ScriptReply reply = runner_->execute(call("whereAmI", {}));
  ASSERT_TRUE(reply.error);
  EXPECT_EQ(reply.error->number, -1712);
  EXPECT_EQ(reply.error->message, "Microsoft Excel got an error: AppleEvent timed out.");
}

TEST_F(EngineRunnerTest, PassesTheSpreadsheetsErrorsOn) {
  memory_->script.atEvery("activeCell", {.number = -609, .message = "Connection is invalid."});
  const ScriptReply reply = runner_->execute(call("whereAmI", {}));
  ASSERT_TRUE(reply.error);
  EXPECT_EQ(reply.error->number, -609);
  EXPECT_EQ(reply.error->message, "Microsoft Excel got an error: Connection is invalid.");
}

TEST_F(EngineRunnerTest, RunsOneHandlerAloneUnderTheTermsOfItsCall) {
  auto owned = std::make_unique<TermsSpreadsheet>();
  TermsSpreadsheet& memory = *owned;
  memory.open(fakes::knownWorkbook());
  memory.script.atEvery("activeCell", {.number = -609, .message = "Connection is invalid."});
  EngineRunner runner(std::make_unique<ExcelObjectModel>(std::move(owned)));
  ASSERT_FALSE(runner.compile(library));
  runner.prepare({.asked = true});
  EXPECT_TRUE(runner.execute(call("whereAmI", {})).error);
  EXPECT_FALSE(runner.execute(call("whatIsOpen", {})).error);
  EXPECT_EQ(memory.asked, (std::vector<bool>{true, false}));
  EXPECT_EQ(memory.ended, 2);
}

TEST_F(EngineRunnerTest, ReportsWhereTheLibraryDoesNotCompile) {
  const auto error = runner_->compile("on a()\nreturn 1\nend a\non b(\n");
  ASSERT_TRUE(error);
  EXPECT_TRUE(error->number);
  EXPECT_TRUE(error->message.value_or("").starts_with("line 4: ")) << error->message.value_or("");
  const ScriptReply reply = runner_->execute(call("whereAmI", {}));
  EXPECT_FALSE(reply.result);
  EXPECT_FALSE(reply.error);
}

TEST_F(EngineRunnerTest, KnowsNoOtherApplication) {
  EXPECT_TRUE(runner_->compile("on a()\ntell application \"Finder\" to activate\nend a\n"));
}

}  // namespace
}  // namespace quorin::host
