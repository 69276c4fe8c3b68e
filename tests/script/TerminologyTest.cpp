#include <gtest/gtest.h>

#include "host/dictionary/ExcelTerminology.h"
#include "script/terms/Terminology.h"

namespace quorin::script {
namespace {

using Words = std::vector<std::string_view>;

TEST(Terminology, MatchesTheLongestTerm) {
  const Terminology& excel = host::excelTerminology();
  const Words used{"used", "range", "of", "ws"};
  EXPECT_EQ(excel.match(used).words, 2U);
  EXPECT_EQ(excel.match(used).term->property, fourCharCode("1756"));
  const Words range{"range", "of"};
  EXPECT_EQ(excel.match(range).words, 1U);
  EXPECT_EQ(excel.match(range).term->type, fourCharCode("X117"));
  const Words type{"cell", "type", "visible"};
  EXPECT_EQ(excel.match(type).words, 3U);
  EXPECT_TRUE(excel.match(type).term->enumerator);
  const Words address{"get", "address", "of", "r"};
  EXPECT_EQ(excel.match(address).term->command->term, "get address");
  EXPECT_EQ(excel.match(Words{"nonsense"}).term, nullptr);
  EXPECT_EQ(excel.match(Words{}).term, nullptr);
}

TEST(Terminology, KnowsCommandsWithTheirLabels) {
  const CommandTerm* command = host::excelTerminology().find("GET ADDRESS")->command;
  ASSERT_NE(command, nullptr);
  EXPECT_EQ(command->eventClass, fourCharCode("sTBL"));
  EXPECT_EQ(command->eventID, fourCharCode("1515"));
  EXPECT_TRUE(command->takesDirect);
  ASSERT_EQ(command->parameters.size(), 5U);
  EXPECT_EQ(command->parameters[0].label, "row absolute");
  EXPECT_EQ(command->parameters[0].code, fourCharCode("5121"));
  EXPECT_FALSE(command->parameters[0].required);
  EXPECT_EQ(host::excelTerminology().command(fourCharCode("sTBL"), fourCharCode("1515")), command);
}

TEST(Terminology, TakesTheFirstOfSeveralCodes) {
  EXPECT_EQ(host::excelTerminology().find("name")->property, fourCharCode("pnam"));
  EXPECT_EQ(host::excelTerminology().find("value")->property, fourCharCode("DPVu"));
  EXPECT_EQ(host::excelTerminology().find("formula")->property, fourCharCode("1562"));
}

TEST(Terminology, NamesCodesForMessages) {
  const Terminology& excel = host::excelTerminology();
  EXPECT_EQ(excel.className(fourCharCode("XwSH")), "worksheet");
  EXPECT_EQ(excel.propertyName(fourCharCode("1104")), "active cell");
  EXPECT_EQ(excel.enumeratorName(0x0270FFFF), "sheet visible");
  EXPECT_EQ(excel.className(fourCharCode("none")), std::nullopt);
}

TEST(Terminology, KnowsWhichClassHasWhichMember) {
  bool hidden = false, rows = false;
  for (const MemberTerm& member : host::excelTerminology().members()) {
    if (member.owner == "range" && member.term == "hidden") hidden = member.writable;
    if (member.owner == "sheet" && member.term == "rows") rows = member.isElement;
  }
  EXPECT_TRUE(hidden);
  EXPECT_TRUE(rows);
}

TEST(Terminology, TellsLabelsFromOtherWords) {
  EXPECT_TRUE(host::excelTerminology().isLabel("range1"));
  EXPECT_TRUE(host::excelTerminology().isLabel("Row Absolute"));
  EXPECT_FALSE(host::excelTerminology().isLabel("worksheet"));
}

TEST(Terminology, ReadsAnyTable) {
  const Terminology terms(
      "class\tbig box\tBBOX\nplural\tbig boxes\tBBOX\nproperty\twidth\t0x00000012\tbig "
      "box\tinteger\tr/w\n"
      "command\tshake\ttestshak\ndirect\t\t----\tshake\tbig box\treq\n"
      "parameter\ttimes over\tTIMO\tshake\tinteger\topt\nproperty\tuncoded\t\tbig box\n");
  EXPECT_EQ(terms.find("big boxes")->plural, fourCharCode("BBOX"));
  EXPECT_EQ(terms.find("width")->property, 0x12U);
  EXPECT_EQ(terms.find("shake")->command->parameters.front().words,
            (std::vector<std::string>{"times", "over"}));
  EXPECT_EQ(terms.find("uncoded"), nullptr);
}

}  // namespace
}  // namespace quorin::script
