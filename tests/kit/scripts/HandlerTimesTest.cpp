// How long each handler lets Excel take.
#include <gmock/gmock.h>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "kit/excel/ExcelScript.h"

namespace quorin {
namespace {

// Handler -> the seconds of its "with timeout" blocks, in order.
std::map<std::string, std::vector<int>> timesOf(const std::string& source) {
  static const std::regex begins(R"(on (qx_[a-z_]+)\(.*)"),
      waits(R"(.*with timeout of (.*) seconds)");
  std::map<std::string, std::vector<int>> times;
  std::istringstream lines(source);
  std::string handler;
  for (std::string line; std::getline(lines, line);) {
    std::smatch found;
    if (std::regex_match(line, found, begins)) handler = found[1];
    if (std::regex_match(line, found, waits)) times[handler].push_back(std::stoi(found[1]));
  }
  return times;
}

TEST(HandlerTimes, AreTheCatalogues) {
  using Times = std::vector<int>;
  const auto times = timesOf(ExcelScript::source());
  const std::map<std::string, Times> catalogue = {
      {"qx_probe", {2}},         {"qx_readcell", {3}},       {"qx_evaluate", {8}},
      {"qx_readrange", {3}},     {"qx_errcol", {3}},         {"qx_select", {3}},
      {"qx_activate", {3}},      {"qx_pollcell", {2}},       {"qx_readformulas", {3}},
      {"qx_dependents", {3}},    {"qx_workbookmap", {8}},    {"qx_deepeval", {8, 60}},
      {"qx_workbookcount", {2}}, {"qx_cf_sheet", {3}},       {"qx_bindaddr", {3}},
      {"qx_joinedbind", {3}},    {"qx_rangefromaddrs", {3}}, {"qx_cf_make", {8}},
      {"qx_cf_move", {8}},       {"qx_cf_clear", {8}},       {"qx_revealread", {3}},
      {"qx_unhide", {8}},        {"qx_revealscroll", {3}},   {"qx_readtexts", {3}}};
  for (const auto& [handler, seconds] : catalogue) {
    ASSERT_TRUE(times.contains(handler)) << handler;
    EXPECT_EQ(times.at(handler), seconds) << handler;
  }
}

// What only other handlers call does not make them wait longer than the longest of them does.
TEST(HandlerTimes, OfHelpersAreNoLonger) {
  for (const auto& [handler, times] : timesOf(ExcelScript::source())) {
    if (handler == "qx_deepeval") continue;
    EXPECT_THAT(times, testing::Each(testing::Le(8))) << handler;
  }
}

}  // namespace
}  // namespace quorin
