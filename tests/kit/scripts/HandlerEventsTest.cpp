// How many events the handlers send. Each is a round to Excel and back, and a call has seconds
// only.
#include <map>
#include <regex>
#include <set>

#include "tests/kit/scripts/EngineConversation.h"
#include "tests/kit/scripts/LibraryFixture.h"

namespace quorin {
namespace {

class HandlerEvents : public LibraryFixture {
 protected:
  static host::RangeRef on(const std::string& address) {
    return {{"Known.xlsx", "Data"}, host::parseA1(address).value()};
  }

  // The handlers that the library does not call itself, and so the native side does.
  static std::set<std::string> entryPoints() {
    const std::string& source = ExcelScript::source();
    static const std::regex begins(R"(\non (qx_[a-z_]+)\()"), called(R"(my (qx_[a-z_]+)\()");
    const std::sregex_iterator end;
    std::set<std::string> handlers;
    for (std::sregex_iterator at(source.begin(), source.end(), begins); at != end; ++at)
      handlers.insert((*at)[1]);
    for (std::sregex_iterator at(source.begin(), source.end(), called); at != end; ++at)
      handlers.erase((*at)[1]);
    return handlers;
  }

  // Every other cell of column A, from the first row on.
  static std::string everyOther(int count) {
    std::string cells;
    for (int i = 0; i < count; ++i) {
      if (i > 0) cells += ',';
      cells += "$A$" + std::to_string(2 * i + 1);
    }
    return cells;
  }

  std::size_t eventsOf(const std::string& handler, Array arguments = {}) {
    excel_->forget();
    EXPECT_THAT(run(handler, std::move(arguments)), testing::Not(testing::StartsWith("error")));
    return excel_->events().size();
  }
};

std::vector<HandlerRequest> countRequests() {
  return {{"qx_workbookcount", {}, "1"}};
}

// Of each handler's requests of the contract the one that takes most: with qx_cf_clear many
// addresses, each of which is looked at alone too, and the names of all sheets, with qx_deepeval
// forty entries, written and read back, with qx_readrange a name behind its workbook alone, after a
// look at the sheets.
TEST_F(HandlerEvents, AreNoMoreThanTheyHaveToBe) {
  const std::map<std::string, std::size_t> most = {
      {"qx_activate", 3},  {"qx_cf_apply", 12},  {"qx_cf_clear", 137},  {"qx_cf_move", 13},
      {"qx_cf_moved", 12}, {"qx_deepeval", 91},  {"qx_dependents", 5},  {"qx_evaluate", 8},
      {"qx_pollcell", 3},  {"qx_probe", 2},      {"qx_readcell", 16},   {"qx_readformulas", 7},
      {"qx_readrange", 9}, {"qx_readtexts", 24}, {"qx_revealread", 20}, {"qx_revealscroll", 9},
      {"qx_select", 11},   {"qx_unhide", 7},     {"qx_workbookmap", 7}, {"qx_workbookcount", 1}};
  std::map<std::string, std::size_t> taken;
  auto owned = std::make_unique<fakes::MemorySpreadsheet>();
  fakes::MemorySpreadsheet& memory = *owned;
  memory.open(fakes::knownWorkbook());
  auto quirky = std::make_unique<fakes::QuirkyExcel>(
      std::make_unique<host::ExcelObjectModel>(std::move(owned)), fakes::ExcelQuirks{});
  fakes::QuirkyExcel& excel = *quirky;
  const auto conversation = engineConversation(std::move(quirky), memory, "Known.xlsx");
  for (const auto& group : {cellRequests(), rangeRequests(), mapRequests(), deepRequests(),
                            markRequests(), revealRequests(), countRequests()})
    for (const HandlerRequest& request : group) {
      excel.forget();
      conversation->answer(request);
      std::size_t& events = taken[request.handler];
      events = std::max(events, excel.events().size());
    }
  EXPECT_THAT(entryPoints(), testing::SizeIs(20));
  for (const std::string& handler : entryPoints()) {
    ASSERT_TRUE(taken.contains(handler) && most.contains(handler)) << handler;
    EXPECT_LE(taken.at(handler), most.at(handler)) << handler;
  }
}

TEST_F(HandlerEvents, AreNoMoreForASelectionOfManyAreas) {
  select("Data", "A1:A1");
  const std::size_t one = eventsOf("qx_readcell");
  memory_->goTo(on(everyOther(1000)));
  EXPECT_EQ(eventsOf("qx_readcell"), one);
}

TEST_F(HandlerEvents, AreNoMoreForAFilteredColumn) {
  const std::size_t one = eventsOf("qx_revealread", {"A1", "Data", "Known.xlsx"});
  for (int row = 2; row <= 2000; row += 2)
    memory_->setHidden(on(std::to_string(row) + ":" + std::to_string(row)), host::Axis::rows, true);
  EXPECT_EQ(eventsOf("qx_revealread", {"A1:A2000", "Data", "Known.xlsx"}), one);
}

// Where Excel cuts addresses off there is no other way than to ask for each area.
TEST_F(HandlerEvents, AreOneForEachAreaWhereExcelCutsAddressesOff) {
  select("Data", "A1:A1");
  const std::size_t one = eventsOf("qx_readcell");
  excel_->quirks.cutsLongAddresses = true;
  memory_->goTo(on(everyOther(1000)));
  EXPECT_LE(eventsOf("qx_readcell"), one + 1 + 1000);
}

}  // namespace
}  // namespace quorin
