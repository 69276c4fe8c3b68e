#include <gtest/gtest.h>

#include "host/Address.h"
#include "host/calc/RequestMemory.h"

namespace quorin::host::calc {
namespace {

const SheetRef data{"Book.xlsx", "Data"};

RangeRef at(const char* address, const SheetRef& sheet = data) {
  return {sheet, parseA1(address).value()};
}

const CellError divided{"#DIV/0!"};
const Grid<CellValue> block{2, 3, {1.0, 2.0, "c", 4.0, CellError{"#N/A"}, true}};

class RequestMemoryTest : public testing::Test {
 protected:
  std::vector<std::string> workbooks() {
    return memory_.workbooks([this] { return std::vector{std::to_string(++asked_)}; });
  }
  std::string namesOf(const char* book) {
    const auto read = [this] {
      return std::vector{
          DefinedName{.name = std::to_string(++asked_), .sheet = {}, .refersTo = {}}};
    };
    return memory_.definedNames(book, read).front().name;
  }
  RequestMemory memory_;
  int asked_ = 0;
};

TEST_F(RequestMemoryTest, AsksEachTimeOutsideOfARequest) {
  EXPECT_EQ(workbooks(), std::vector<std::string>{"1"});
  EXPECT_EQ(workbooks(), std::vector<std::string>{"2"});
  memory_.keepValues(at("A1:C2"), block);
  EXPECT_EQ(memory_.values(at("A1:C2")), std::nullopt);
}

TEST_F(RequestMemoryTest, AsksOnceInARequest) {
  memory_.begin();
  EXPECT_EQ(workbooks(), std::vector<std::string>{"1"});
  EXPECT_EQ(workbooks(), std::vector<std::string>{"1"});
  EXPECT_EQ(namesOf("a"), "2");
  EXPECT_EQ(namesOf("b"), "3");
  EXPECT_EQ(namesOf("a"), "2");
}

TEST_F(RequestMemoryTest, ForgetsAtTheEndAndWhenSomethingChanges) {
  memory_.begin();
  workbooks();
  memory_.keepValues(at("A1:C2"), block);
  memory_.forget();
  EXPECT_EQ(workbooks(), std::vector<std::string>{"2"});
  EXPECT_EQ(memory_.values(at("A1")), std::nullopt);
  memory_.end();
  memory_.begin();
  EXPECT_EQ(workbooks(), std::vector<std::string>{"3"});
}

TEST_F(RequestMemoryTest, DoesNotTakeAFailureForAnAnswer) {
  memory_.begin();
  EXPECT_THROW(
      memory_.workbooks([]() -> std::vector<std::string> { throw SpreadsheetError(-600, "gone"); }),
      SpreadsheetError);
  EXPECT_EQ(workbooks(), std::vector<std::string>{"1"});
}

TEST_F(RequestMemoryTest, KnowsPartsOfWhatWasRead) {
  memory_.begin();
  memory_.keepValues(at("B2:D3"), block);
  EXPECT_EQ(memory_.values(at("B2:D3")), block);
  EXPECT_EQ(memory_.values(at("C2:C3")), (Grid<CellValue>{2, 1, {2.0, CellError{"#N/A"}}}));
  EXPECT_EQ(memory_.values(at("D3")), (Grid<CellValue>{1, 1, {true}}));
  EXPECT_EQ(memory_.values(at("A2:D3")), std::nullopt);
  EXPECT_EQ(memory_.values(at("B2", {"Book.xlsx", "Other"})), std::nullopt);
}

TEST_F(RequestMemoryTest, GivesAwayTheFirstColumnOfARange) {
  const Grid<CellValue> column{2, 1, {1.0, 2.0}};
  memory_.begin();
  for (const char* other : {"B2:D4", "A2:D3", "C2:D3"}) {
    memory_.keepValues(at("B2:B3"), column);
    EXPECT_EQ(memory_.takeFirstColumn(at(other)), std::nullopt) << other;
  }
  EXPECT_EQ(memory_.takeFirstColumn(at("B2:D3", {"Book.xlsx", "Other"})), std::nullopt);
  EXPECT_EQ(memory_.takeFirstColumn(at("B2:D3")), column);
  EXPECT_EQ(memory_.takeFirstColumn(at("B2:D3")), std::nullopt);
}

TEST_F(RequestMemoryTest, KnowsWhereNoErrorIs) {
  memory_.begin();
  memory_.noteErrors(at("A1:A2"), {2, 1, {1.0, "#N/A"}});
  EXPECT_TRUE(memory_.hasNoErrors(at("A2")));
  EXPECT_FALSE(memory_.hasNoErrors(at("A1:B2")));
  memory_.noteErrors(at("A1:C2"), block);
  EXPECT_FALSE(memory_.hasNoErrors(at("A1")));
}

// A handler that has read the formulas of a range looks at the displayed texts of its first column,
// then at all of them.
TEST_F(RequestMemoryTest, KnowsWhichTextsAreAskedForNext) {
  const Grid<CellValue> numbers{2, 3, {1.0, 2.0, 3.0, 4.0, 5.0, 6.0}};
  EXPECT_EQ(memory_.textsAskedNext(at("A1:A2")), at("A1:A2"));  // nothing was read
  memory_.begin();
  memory_.keepValues(at("A1:C2"), numbers);
  memory_.noteErrors(at("A1:C2"), numbers);
  EXPECT_EQ(memory_.textsAskedNext(at("A1:A2")), at("A1:C2"));
  for (const char* other : {"A1", "B1:B2", "A1:B2", "A1:A3"}) {
    EXPECT_EQ(memory_.textsAskedNext(at(other)), at(other)) << other;
  }
  EXPECT_EQ(memory_.textsAskedNext(at("A1:A2", {"Book.xlsx", "Other"})).sheet.sheet, "Other");
  // Of errors those in the first column alone would end it there.
  memory_.keepValues(at("A1:C2"), {2, 3, {1.0, 2.0, 3.0, 4.0, divided, 6.0}});
  EXPECT_EQ(memory_.textsAskedNext(at("A1:A2")), at("A1:C2"));
  memory_.keepValues(at("A1:C2"), {2, 3, {1.0, 2.0, 3.0, divided, 5.0, 6.0}});
  EXPECT_EQ(memory_.textsAskedNext(at("A1:A2")), at("A1:A2"));
}

TEST_F(RequestMemoryTest, NamesTheErrorsThatItKnows) {
  EXPECT_FALSE(memory_.knowsErrors(at("A1")));
  memory_.begin();
  memory_.keepValues(at("B1:C2"), {2, 2, {1.0, divided, "text", CellError{"#N/A"}}});
  EXPECT_FALSE(memory_.knowsErrors(at("B1:C3")));
  ASSERT_TRUE(memory_.knowsErrors(at("C1:C2")));
  Grid<std::string> texts{2, 1, {"#DIV/0 !", "#NV"}};  // as Calc calls them elsewhere
  memory_.nameErrors(at("C1:C2"), texts);
  EXPECT_EQ(texts.cells, (std::vector<std::string>{"#DIV/0!", "#N/A"}));
  ASSERT_TRUE(memory_.knowsErrors(at("B2:C2")));
  texts = {1, 2, {"text", "#NV"}};
  memory_.nameErrors(at("B2:C2"), texts);
  EXPECT_EQ(texts.cells, (std::vector<std::string>{"text", "#N/A"}));
  memory_.forget();
  EXPECT_FALSE(memory_.knowsErrors(at("B2:C2")));
}

TEST_F(RequestMemoryTest, ReadsNoMoreTextsAheadThanAreAskedFor) {
  const auto next = [this](const char* all, const char* first) {
    const Area area = parseA1(all).value().front();
    const Grid<CellValue> blank{
        rowCount(area), columnCount(area),
        std::vector<CellValue>(static_cast<std::size_t>(cellCount({area})), CellValue(1.0))};
    memory_.begin();
    memory_.keepValues(at(all), blank);
    memory_.noteErrors(at(all), blank);
    return memory_.textsAskedNext(at(first));
  };
  EXPECT_EQ(next("A1:B2500", "A1:A2500"), at("A1:B2500"));
  EXPECT_EQ(next("A1:C1667", "A1:A1667"), at("A1:A1667"));  // 5,001
}

TEST_F(RequestMemoryTest, TellsTextsOnceAndForgetsThemWithTheRest) {
  const Grid<std::string> texts{1, 2, {"1", "two"}};
  memory_.keepTexts(at("A1:B1"), texts);
  EXPECT_EQ(memory_.takeTexts(at("A1:B1")), std::nullopt);  // outside of a request
  memory_.begin();
  memory_.keepTexts(at("A1:B1"), texts);
  EXPECT_EQ(memory_.takeTexts(at("A1")), std::nullopt);
  EXPECT_EQ(memory_.takeTexts(at("A1:B1")), texts);
  EXPECT_EQ(memory_.takeTexts(at("A1:B1")), std::nullopt);
  memory_.keepTexts(at("A1:B1"), texts);
  memory_.forget();
  EXPECT_EQ(memory_.takeTexts(at("A1:B1")), std::nullopt);
}

TEST_F(RequestMemoryTest, KnowsWhereTextsAreShort) {
  memory_.begin();
  EXPECT_FALSE(memory_.hasShortTexts(at("A1")));
  memory_.keepValues(at("A1:B1"), {1, 2, {1.0, std::string(100, 'x')}});
  EXPECT_TRUE(memory_.hasShortTexts(at("A1:B1")));
  EXPECT_FALSE(memory_.hasShortTexts(at("A1:C1")));
  memory_.keepValues(at("A1:B1"), {1, 2, {1.0, std::string(101, 'x')}});
  EXPECT_FALSE(memory_.hasShortTexts(at("A1:B1")));
}

}  // namespace
}  // namespace quorin::host::calc
