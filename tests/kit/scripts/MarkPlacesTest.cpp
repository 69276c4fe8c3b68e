// How the cells of a highlight are bound: many addresses in few texts, and each alone where Excel
// does not take them together.
#include <algorithm>

#include "host/model/Codes.h"
#include "tests/kit/scripts/LibraryFixture.h"

namespace quorin {
namespace {

using testing::ElementsAre;

class MarkPlaces : public LibraryFixture {
 protected:
  static constexpr const char* sentinel = "=\"QXZ\"=\"QXZ\"";

  void SetUp() override {
    LibraryFixture::SetUp();
    memory_->open(fakes::ruledWorkbook());
    excel_->forget();
  }

  std::string apply(Array addresses) {
    return run("qx_cf_apply", {std::move(addresses), "Ruled.xlsx", "Rules", 255, 0, 128});
  }
  std::string clear(Array addresses) {
    return run("qx_cf_clear", {std::move(addresses), "Ruled.xlsx", "Rules"});
  }
  std::vector<host::FormatCondition> at(const char* address) {
    return memory_->formatConditions({{"Ruled.xlsx", "Rules"}, host::parseA1(address).value()});
  }

  // The texts that Excel was asked for as ranges, each once, without those that it wrote itself.
  std::vector<std::string> textsBound() const {
    std::vector<std::string> texts;
    for (const AppleEvent& event : excel_->events())
      for (const AppleEventDescriptor::Field& field : event.parameters) collect(field.value, texts);
    return texts;
  }

  // The number of the first event that makes a condition.
  int eventThatMakes() const {
    const auto& events = excel_->events();
    const auto make = std::find_if(events.begin(), events.end(), [](const AppleEvent& event) {
      return event.eventClass == host::codes::coreSuite && event.eventID == host::codes::make;
    });
    return static_cast<int>(make - events.begin()) + 1;
  }

 private:
  static void collect(const AppleEventDescriptor& value, std::vector<std::string>& texts) {
    for (const AppleEventDescriptor::Field& field : value.fields()) collect(field.value, texts);
    const AppleEventDescriptor* const wanted = value.field(host::codes::desiredClass);
    const AppleEventDescriptor* const data = value.field(host::codes::keyData);
    if (wanted == nullptr || wanted->codeValue() != host::codes::range || data == nullptr) return;
    const std::string text(data->stringValue().value_or("$"));
    if (text.find('$') != std::string::npos) return;
    if (std::find(texts.begin(), texts.end(), text) == texts.end()) texts.push_back(text);
  }
};

TEST_F(MarkPlaces, AreBoundInTextsOfFifty) {
  Array addresses;
  std::string first, second;
  for (int i = 0; i < 101; ++i) {
    const std::string address = "F" + std::to_string(2 * i + 1);
    addresses.push_back(address);
    std::string& text = i < 50 ? first : second;
    if (i < 100) text += (text.empty() ? "" : ",") + address;
  }
  EXPECT_EQ(apply(addresses), "[1,0]");
  EXPECT_THAT(textsBound(), ElementsAre(first, second, "F201"));
  EXPECT_EQ(at("F1").size(), 1U);
  EXPECT_EQ(at("F201").size(), 1U);
}

TEST_F(MarkPlaces, AreParsedBySemicolonsWhereTheUsersExcelDoes) {
  excel_->quirks.separatesWithSemicolons = true;
  EXPECT_EQ(apply({"F1", "F3"}), "[1,0]");
  EXPECT_THAT(textsBound(), ElementsAre("F1,F3", "F1;F3"));
  EXPECT_EQ(at("F3").size(), 1U);
}

// One of them does not bind, and what it stood for is looked for on the whole sheet.
TEST_F(MarkPlaces, AreNotJoinedWithAnAddressInBrackets) {
  EXPECT_EQ(clear({"F1", "T[Net]"}), "0");
  EXPECT_THAT(textsBound(), ElementsAre("F1", "T[Net]", "A:A"));
}

TEST_F(MarkPlaces, AreNotJoinedByWhatOneOfThemHolds) {
  EXPECT_EQ(clear({"G1", "F1,F3"}), "0");
  EXPECT_THAT(textsBound(), ElementsAre("G1;F1,F3", "G1", "F1,F3"));
}

// Where the sign between them means something else the text may bind to part of the cells.
TEST_F(MarkPlaces, AreBoundAloneWhereTogetherTheyAreFewerCells) {
  excel_->quirks.readsUpToTheComma = true;
  EXPECT_EQ(apply({"F1", "F3"}), "[1,0]");
  EXPECT_THAT(textsBound(), ElementsAre("F1,F3", "F1;F3", "F1", "F3"));
  EXPECT_EQ(at("F1").size(), 1U);
  EXPECT_EQ(at("F3").size(), 1U);
}

TEST_F(MarkPlaces, GetAConditionEachWhereExcelMakesNoneForAll) {
  EXPECT_EQ(apply({"B2", "D2"}), "[1,2]");
  const int together = eventThatMakes();
  EXPECT_EQ(clear({"B2", "D2"}), "1");
  excel_->forget();
  // Both ways of making it; between them Excel is asked whether there is one.
  excel_->failAt(together, {-10006, "Excel refuses.", {}});
  excel_->failAt(together + 2, {-10006, "Excel refuses.", {}});
  EXPECT_EQ(apply({"B2", "D2"}), "[2,2]");
  for (const char* const cell : {"B2", "D2"}) {
    ASSERT_EQ(at(cell).size(), 2U) << cell;
    EXPECT_EQ(at(cell).front().formula, sentinel);
    EXPECT_EQ(at(cell).front().areas, host::parseA1(cell));
    EXPECT_EQ(at(cell).front().fill, (host::Color{255, 0, 128}));
  }
}

TEST_F(MarkPlaces, LeaveARuleOfTheUsersThatDiffersInCase) {
  const std::string theirs = "=\"qxz\"=\"qxz\"";
  memory_->addFormatCondition({{"Ruled.xlsx", "Rules"}, host::parseA1("F1").value()}, theirs);
  EXPECT_EQ(apply({"F1"}), "[1,1]");
  EXPECT_EQ(clear({"F1"}), "1");
  ASSERT_EQ(at("F1").size(), 1U);
  EXPECT_EQ(at("F1").front().formula, theirs);
}

}  // namespace
}  // namespace quorin
