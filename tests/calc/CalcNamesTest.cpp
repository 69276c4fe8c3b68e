// Defined names, few and many, found and listed.
#include "tests/calc/CalcReads.h"

namespace quorin::host::calc {
namespace {

using testing::HasSubstr;

class CalcNamesTest : public CalcReads {
 protected:
  static void SetUpTestSuite() {
    CalcReads::SetUpTestSuite();
    fakes::WorkbookDescription book{
        .name = "Names.xlsx",
        .sheets = {{"Data", {{"A1", 5.0}, {"A2", 7.0}, {"B1", 5.0, "=Rate"}}},
                   {"Other", {{"A1", 1.0}}}},
        .names = {{"Rate", "=Data!$A$1"}, {"Caf\u00E9", "=Data!$A$2"}, {"K\u00F6ln", "=3"}}};
    for (int i = 1; i <= 2500; ++i) {
      book.names.push_back(
          {"Many_" + std::to_string(i), "=Data!$A$" + std::to_string(i), i % 2 ? "" : "Other"});
    }
    open(book);
  }
  void SetUp() override {
    road->use([](CalcSpreadsheet& calc) {
      calc.activateWorkbook("Names.xlsx");
      calc.activateSheet({"Names.xlsx", "Data"});
    });
  }
};

TEST_F(CalcNamesTest, AreFoundInAnyCaseAndHoweverAccentsAreWritten) {
  for (const char* name : {"Caf\u00E9", "CAF\u00C9", "cafe\u0301", "CAFE\u0301"}) {
    EXPECT_EQ(ask("readRange", {name}), grid(1, 1, "[[7]]")) << name;
    EXPECT_EQ(evaluate(std::string(name) + "*2"), R"({"ok":true,"value":14})") << name;
  }
  EXPECT_EQ(evaluate("ko\u0308LN+rate"), R"({"ok":true,"value":8})");
  EXPECT_EQ(evaluate("Cafe"), R"({"kind":"excelError","message":"#NAME?","ok":false})");
}

TEST_F(CalcNamesTest, AreFoundUnderTheNamesThatTheyHaveNow) {
  EXPECT_EQ(evaluate("cafe\u0301+Rate"), R"({"ok":true,"value":12})");
  hands->renameName("Names.xlsx", "Rate", "Prim\u00E9");
  EXPECT_EQ(evaluate("Rate"), R"({"kind":"excelError","message":"#NAME?","ok":false})");
  for (const char* name : {"Prim\u00E9", "prim\u00C9", "prime\u0301"}) {
    EXPECT_EQ(evaluate(name), R"({"ok":true,"value":5})") << name;
  }
  hands->renameName("Names.xlsx", "Prim\u00E9", "Rate");
  EXPECT_EQ(evaluate("prime\u0301"), R"({"kind":"excelError","message":"#NAME?","ok":false})");
  EXPECT_EQ(evaluate("RATE"), R"({"ok":true,"value":5})");
}

TEST_F(CalcNamesTest, AreListedAllWithWhatTheyStandFor) {
  const JSONValue map = road->bridge().dispatch("workbookMap", {}).payload;
  const JSONValue::Object* const told = map.object();
  ASSERT_TRUE(told && told->contains("names")) << Marshal::encode(map);
  const JSONValue::Array& names = *told->at("names").array();
  ASSERT_EQ(names.size(), 2503u);
  std::map<std::string, std::string> meanings;
  for (const JSONValue& each : names) {
    meanings[*each.object()->at("name").string()] = *each.object()->at("refersTo").string();
  }
  EXPECT_EQ(meanings.size(), 2503u);
  EXPECT_EQ(meanings["Rate"], "=Data!$A$1");
  EXPECT_EQ(meanings["K\u00F6ln"], "=3");
  for (const int i : {1, 999, 1001, 1249, 2499}) {
    EXPECT_EQ(meanings["Many_" + std::to_string(i)], "=Data!$A$" + std::to_string(i));
  }
  for (const int i : {2, 1000, 2498, 2500}) {
    EXPECT_EQ(meanings["Other!Many_" + std::to_string(i)], "=Data!$A$" + std::to_string(i));
  }
}

}  // namespace
}  // namespace quorin::host::calc
