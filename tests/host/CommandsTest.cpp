// The commands: addresses, unions, moving the selection, evaluation, settings, and how they fail.
#include "tests/host/ObjectModelFixture.h"

namespace quorin::host {
namespace {

using namespace events;

class Commands : public ObjectModelTest {
 protected:
  AppleEvent goTo(Descriptor reference) {
    return event(codes::excelSuite, codes::goTo, {{codes::goToReference, std::move(reference)}});
  }
  AppleEvent unite(Descriptor first, Descriptor second) {
    return event(
        codes::excelSuite, codes::unite,
        {{fourCharCode("XLr1"), std::move(first)}, {fourCharCode("XLr2"), std::move(second)}});
  }
  AppleEvent direct(FourCharCode suite, FourCharCode command, Descriptor object) {
    return event(suite, command, {{keyDirectObject, std::move(object)}});
  }
  RangeRef at(const char* sheet, const char* address) {
    return {{"Known.xlsx", sheet}, parse(address)};
  }
};

TEST_F(Commands, GetAddressIsAbsoluteUnlessToldOtherwise) {
  AppleEvent address = getAddress(on("B3:C4"));
  EXPECT_EQ(text(address), "$B$3:$C$4");
  address.parameters.push_back({codes::rowAbsolute, Descriptor::boolean(false)});
  EXPECT_EQ(text(address), "$B3:$C4");
  address.parameters.push_back({codes::columnAbsolute, Descriptor::boolean(false)});
  EXPECT_EQ(text(address), "B3:C4");
}

TEST_F(Commands, GetAddressNamesTheSheetWhenAskedTo) {
  AppleEvent address = getAddress(on("A1"));
  address.parameters.push_back({codes::external, Descriptor::boolean(true)});
  EXPECT_EQ(text(address), "[Known.xlsx]Data!$A$1");
  address.parameters[0].value = range("A1,C3", odd());
  EXPECT_EQ(text(address), "'[Known.xlsx]It''s a test'!$A$1,$C$3");
}

TEST_F(Commands, GetAddressSpeaksR1C1) {
  AppleEvent address = getAddress(on("B3"));
  address.parameters.push_back({codes::referenceStyle, Descriptor::enumerator(codes::styleR1C1)});
  EXPECT_EQ(text(address), "R3C2");
  address.parameters.push_back({codes::rowAbsolute, Descriptor::boolean(false)});
  address.parameters.push_back({codes::columnAbsolute, Descriptor::boolean(false)});
  address.parameters.push_back({codes::relativeTo, on("D4")});
  EXPECT_EQ(text(address), "R[-1]C[-2]");
}

TEST_F(Commands, GetAddressWantsARange) {
  EXPECT_EQ(errorOf(getAddress(workbook("Known.xlsx"))), -1708);
  EXPECT_EQ(errorOf(getAddress(Descriptor::integer(5))), -1708);
  EXPECT_EQ(errorOf(event(codes::tableSuite, codes::getAddress)), -1715);
}

TEST_F(Commands, UnionKeepsTheOrderOfItsAreas) {
  EXPECT_EQ(ask(unite(on("C3"), on("A1:A2"))), on("$C$3,$A$1:$A$2"));
}

TEST_F(Commands, UnionJoinsWhatFillsARectangle) {
  EXPECT_EQ(ask(unite(on("A1"), on("A2"))), on("$A$1:$A$2"));
  EXPECT_EQ(ask(unite(on("B2:C3"), on("A2:A3"))), on("$A$2:$C$3"));
  EXPECT_EQ(ask(unite(on("A1:B2"), on("B2"))), on("$A$1:$B$2"));
  EXPECT_EQ(ask(unite(on("A1,C1"), on("B1"))), on("$A$1:$C$1"));
  EXPECT_EQ(ask(unite(on("A1"), on("B2"))), on("$A$1,$B$2"));
  EXPECT_EQ(ask(unite(on("Z9,A1,C1:C2,B2"), on("B1"))), on("$Z$9,$A$1:$B$1,$C$1:$C$2,$B$2"));
  EXPECT_EQ(ask(unite(on("A1:B1,A3:C3,C2"), on("A2:B2"))), on("$A$1:$B$2,$A$3:$C$3,$C$2"));
  EXPECT_EQ(ask(unite(on("A2:C2,A1,C1"), on("B1"))), on("$A$1:$C$2"));
}

TEST_F(Commands, UnionTakesUpToThirtyRanges) {
  AppleEvent many = event(codes::excelSuite, codes::unite);
  for (int i = 1; i <= 30; ++i) {
    const std::string label = (i < 10 ? "XLr" : "Xr") + std::to_string(i);
    FourCharCode code = 0;
    for (char c : label) code = code << 8 | static_cast<unsigned char>(c);
    many.parameters.push_back({code, on("A" + std::to_string(2 * i))});
  }
  const Descriptor united = ask(many);
  EXPECT_EQ(
      ask(event(codes::coreSuite, codes::count, {{keyDirectObject, every(codes::cell, united)}})),
      Descriptor::integer(30));
}

TEST_F(Commands, UnionStaysOnOneSheet) {
  EXPECT_EQ(errorOf(unite(on("A1"), range("A1", odd()))), -50);
  EXPECT_EQ(errorOf(event(codes::excelSuite, codes::unite, {{fourCharCode("XLr1"), on("A1")}})),
            -1715);
}

TEST_F(Commands, GotoSwitchesSheets) {
  select("Data", "A1");
  EXPECT_EQ(ask(goTo(range("B2:C3", odd()))), Descriptor::null());
  EXPECT_EQ(memory().selection(), at("It's a test", "B2:C3"));
  ask(goTo(Descriptor::text("Data!A7")));
  EXPECT_EQ(memory().selection(), at("Data", "A7"));
}

TEST_F(Commands, GotoScrollsOnlyWhenToldTo) {
  AppleEvent scrolling = goTo(on("E8"));
  memory().script.clear();
  ask(scrolling);
  scrolling.parameters.push_back({codes::goToScroll, Descriptor::boolean(true)});
  ask(scrolling);
  const auto calls = memory().script.calls();
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "scrollTo [Known.xlsx]Data!$E$8"), 1);
}

TEST_F(Commands, GotoNeedsAPlaceToGo) {
  EXPECT_EQ(errorOf(event(codes::excelSuite, codes::goTo)), -1715);
  EXPECT_EQ(errorOf(goTo(range("Nowhere!A1"))), -1728);
  EXPECT_EQ(errorOf(goTo(data())), -1708);
}

TEST_F(Commands, SelectTakesUnions) {
  ask(direct(codes::miscellaneousSuite, codes::select, on("A1:B2,D4")));
  EXPECT_EQ(addressOf(property(codes::selection)), "$A$1:$B$2,$D$4");
  ask(direct(codes::miscellaneousSuite, codes::select, odd()));
  EXPECT_EQ(memory().activeSheet(), (SheetRef{"Known.xlsx", "It's a test"}));
}

TEST_F(Commands, ActivateObjectBringsSheetsAndBooksForward) {
  memory().open({.name = "Second.xlsx", .sheets = {{"One", {}}}});
  ask(direct(codes::excelSuite, codes::activateObject, workbook("Known.xlsx")));
  EXPECT_EQ(memory().activeWorkbook(), "Known.xlsx");
  ask(direct(codes::excelSuite, codes::activateObject, odd()));
  EXPECT_EQ(memory().activeSheet(), (SheetRef{"Known.xlsx", "It's a test"}));
}

TEST_F(Commands, ActivateObjectMovesTheActiveCellInsideTheSelection) {
  select("Data", "A1:C4");
  ask(direct(codes::excelSuite, codes::activateObject, on("B4")));
  EXPECT_EQ(addressOf(property(codes::activeCell)), "$B$4");
  EXPECT_EQ(addressOf(property(codes::selection)), "$A$1:$C$4");
}

TEST_F(Commands, ActivateBringsTheProgramForward) {
  ask(event(codes::miscellaneousSuite, codes::activate));
  EXPECT_EQ(get(property(codes::frontmost)), Descriptor::boolean(true));
}

TEST_F(Commands, EvaluateGivesValuesAndReferences) {
  select("Data", "A1");
  EXPECT_EQ(ask(evaluate("B2*2")), Descriptor::real(3));
  EXPECT_EQ(ask(evaluate("=1=1")), Descriptor::boolean(true));
  EXPECT_EQ(ask(evaluate("\"a\"&1")), Descriptor::text("a1"));
  EXPECT_EQ(ask(evaluate("{1,2;3,4}")), row({row({Descriptor::real(1), Descriptor::real(2)}),
                                             row({Descriptor::real(3), Descriptor::real(4)})}));
  EXPECT_EQ(ask(evaluate("B2:B3")), on("$B$2:$B$3"));
}

TEST_F(Commands, EvaluateWithoutAValueIsMinus1708) {
  select("Data", "A1");
  EXPECT_EQ(errorOf(evaluate("1/0")), -1708);
  EXPECT_EQ(errorOf(evaluate("NoSuchName")), -1708);
  EXPECT_EQ(errorOf(evaluate("1+")), -1708);
  EXPECT_EQ(ask(evaluate("IFERROR(1/0,\"__ERR:\"&ERROR.TYPE(1/0))")), Descriptor::text("__ERR:2"));
}

TEST_F(Commands, EvaluateKeepsErrorsInsideArraysAsMissingValues) {
  EXPECT_EQ(ask(evaluate("{1,#N/A}")),
            row({row({Descriptor::real(1), Descriptor::missingValue()})}));
}

TEST_F(Commands, EvaluateIsSeenFromTheSheetOfTheTell) {
  select("Data", "A1");
  AppleEvent told = evaluate("A1+0");
  EXPECT_EQ(errorOf(told), -1708) << "Item is no number";
  told.attributes.push_back({keySubject, odd()});
  EXPECT_EQ(ask(told), Descriptor::real(2.5));
  told.attributes[0].value = application();
  EXPECT_EQ(errorOf(told), -1708);
}

TEST_F(Commands, EvaluateNeedsAWorkbookAndText) {
  EXPECT_EQ(errorOf(event(codes::excelSuite, codes::evaluate)), -1715);
  memory().close("Known.xlsx");
  EXPECT_EQ(errorOf(evaluate("1+1")), -1728);
}

TEST_F(Commands, SetChangesWhatCanBeChanged) {
  const auto set = [](Descriptor object, Descriptor value) {
    return event(codes::coreSuite, codes::set,
                 {{keyDirectObject, std::move(object)}, {codes::setTo, std::move(value)}});
  };
  ask(set(property(codes::displayAlerts), Descriptor::boolean(false)));
  EXPECT_EQ(get(property(codes::displayAlerts)), Descriptor::boolean(false));
  EXPECT_EQ(errorOf(set(property(codes::displayAlerts), Descriptor::text("no"))), -50);
  EXPECT_EQ(errorOf(set(property(codes::version), Descriptor::text("9"))), -10006);
  EXPECT_EQ(errorOf(set(property(codes::usedRange, on("A1")), Descriptor::text("9"))), -10006);
  EXPECT_EQ(errorOf(set(on("A1"), Descriptor::text("9"))), -10006);
  EXPECT_EQ(errorOf(set(property(codes::value2, range("Nowhere!A1")), Descriptor::real(1))), -1728);
}

TEST_F(Commands, UnknownEventsAreNotUnderstood) {
  EXPECT_EQ(errorOf(event(codes::excelSuite, fourCharCode("9999"))), -1708);
  EXPECT_EQ(errorOf(event(fourCharCode("ascr"), fourCharCode("psbr"))), -1708);
}

TEST_F(Commands, FailWithTheSpreadsheetsNumberAndText) {
  memory().script.atEvery("activeCell", {.number = -609, .message = "Connection is invalid."});
  const AppleEventReply reply = send(getAddress(property(codes::activeCell)));
  ASSERT_TRUE(reply.error);
  EXPECT_EQ(reply.error->number, -609);
  EXPECT_EQ(reply.error->message, "Connection is invalid.");
  EXPECT_EQ(reply.error->offender, property(codes::activeCell));
}

TEST_F(Commands, AreRefusedWhileACellIsEdited) {
  memory().program.editing = true;
  EXPECT_EQ(errorOf(goTo(on("B2"))), -10000);
  EXPECT_EQ(errorOf(direct(codes::miscellaneousSuite, codes::select, on("B2"))), -10000);
  EXPECT_EQ(addressOf(property(codes::activeCell)), "$A$1");
}

TEST_F(Commands, AnswersAfterTheTimeOutAreMinus1712) {
  memory().script.atEvery("activeCell", {.takes = std::chrono::milliseconds(2001)});
  const AppleEvent address = getAddress(property(codes::activeCell));
  const auto late = model_->send(address, std::chrono::seconds(2));
  ASSERT_TRUE(late.error);
  EXPECT_EQ(late.error->number, -1712);
  EXPECT_FALSE(late.result);
  EXPECT_EQ(model_->send(address, std::chrono::milliseconds(2001)).result,
            Descriptor::text("$A$1"));
}

TEST_F(Commands, KnowWhetherTheProgramRuns) {
  EXPECT_TRUE(model_->isRunning());
  memory().program.running = false;
  EXPECT_FALSE(model_->isRunning());
  EXPECT_EQ(errorOf(getAddress(property(codes::activeCell))), -600);
  EXPECT_EQ(model_->name(), "Microsoft Excel");
}

}  // namespace
}  // namespace quorin::host
