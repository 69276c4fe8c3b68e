#include <gmock/gmock.h>
#include <regex>
#include <string>
#include <vector>

#include "kit/excel/ExcelScript.h"

namespace quorin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// The names of the handlers that a text defines, in order.
std::vector<std::string> handlers(const std::string& text) {
  static const std::regex opening("(?:^|\n)on ([A-Za-z_0-9]+)\\(");
  std::vector<std::string> names;
  for (std::sregex_iterator it(text.begin(), text.end(), opening), end; it != end; ++it)
    names.push_back((*it)[1]);
  return names;
}

// Those of them that are called from outside or named by the library's contract; helpers that a
// text keeps for itself follow them.
std::vector<std::string> firstHandlers(const std::string& text, std::size_t count) {
  std::vector<std::string> names = handlers(text);
  names.resize(std::min(count, names.size()));
  return names;
}

TEST(ExcelScript, HoldsItsHandlersInOrder) {
  EXPECT_THAT(firstHandlers(ExcelScript::core(), 8),
              ElementsAre("qx_probe", "qx_readcell", "qx_evaluate", "qx_readrange", "qx_errcol",
                          "qx_select", "qx_activate", "qx_pollcell"));
  EXPECT_THAT(firstHandlers(ExcelScript::m3(), 5),
              ElementsAre("qx_readformulas", "qx_dependents", "qx_workbookmap", "qx_deepeval",
                          "qx_workbookcount"));
  EXPECT_THAT(firstHandlers(ExcelScript::cf(), 7),
              ElementsAre("qx_cf_sheet", "qx_bindaddr", "qx_joinedbind", "qx_rangefromaddrs",
                          "qx_cf_make", "qx_cf_apply", "qx_cf_clear"));
  EXPECT_THAT(handlers(ExcelScript::reveal()),
              ElementsAre("qx_revealread", "qx_unhide", "qx_revealscroll"));
  EXPECT_THAT(handlers(ExcelScript::perf()), ElementsAre("qx_cf_move"));
}

TEST(ExcelScript, JoinsItsTextsWithLineFeeds) {
  EXPECT_EQ(ExcelScript::source(), ExcelScript::core() + "\n" + ExcelScript::m3() + "\n" +
                                       ExcelScript::cf() + "\n" + ExcelScript::reveal() + "\n" +
                                       ExcelScript::perf());
}

TEST(ExcelScript, DefinesEachHandlerOnceInLowerCase) {
  std::vector<std::string> names = handlers(ExcelScript::source());
  for (const std::string& name : names)
    EXPECT_TRUE(std::regex_match(name, std::regex("qx_[a-z0-9_]+"))) << name;
  std::sort(names.begin(), names.end());
  EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
  EXPECT_GE(names.size(), 24u);
}

TEST(ExcelScript, ListsTheErrorLiterals) {
  EXPECT_THAT(
      ExcelScript::core(),
      HasSubstr("\n\t\t\tset errs to {\"#NULL!\", \"#DIV/0!\", \"#VALUE!\", \"#REF!\", \"#NAME?\", "
                "\"#NUM!\", \"#N/A\", \"#GETTING_DATA\", \"#SPILL!\", \"#CALC!\", \"#FIELD!\", "
                "\"#CONNECT!\", \"#BLOCKED!\", \"#UNKNOWN!\", \"#EXTERNAL!\", \"#PYTHON!\", "
                "\"#BUSY!\"}\n"));
}

}  // namespace
}  // namespace quorin
