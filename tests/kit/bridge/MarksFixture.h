// A bridge with highlights and unhidden rows in its records.
#pragma once

#include <utility>

#include "tests/kit/bridge/BridgeFixture.h"

namespace quorin {

class MarksFixture : public BridgeFixture {
 protected:
  using Record = HighlightStore::Record;
  using Records = HighlightStore::Records;
  using Hidden = UnhideStore::Record;
  using HiddenRecords = UnhideStore::Records;
  using Texts = std::vector<std::string>;
  using Colour = std::vector<std::int64_t>;

  MarksFixture() { active("Plan.xlsx", "Q1", "$A$1"); }

  // Where every poll finds the active cell.
  void active(const std::string& book, const std::string& sheet, const std::string& addr) {
    excel_.returns("qx_pollcell", Array{book, sheet, addr});
  }

  static Texts cells(int from, int to) {
    Texts addresses;
    for (int row = from; row <= to; ++row) addresses.push_back("$A$" + std::to_string(row));
    return addresses;
  }
  static JSONValue addresses(const Texts& texts) { return Array(texts.begin(), texts.end()); }
  static Array argumentsOf(const fakes::FakeExcel::Call& call) { return *call.arguments.array(); }

  // The calls of one handler.
  std::vector<fakes::FakeExcel::Call> callsOf(const std::string& handler) const {
    std::vector<fakes::FakeExcel::Call> chosen;
    for (fakes::FakeExcel::Call& call : excel_.calls())
      if (call.handler == handler) chosen.push_back(std::move(call));
    return chosen;
  }

  bool hasFile(const std::string& name) const { return std::filesystem::exists(folder_ / name); }

  static std::string messageOf(const std::function<void()>& action) {
    try {
      action();
    } catch (const std::exception& thrown) {
      return thrown.what();
    }
    return "(no error)";
  }

  const Colour red_ = {255, 0, 0};
};

}  // namespace quorin
