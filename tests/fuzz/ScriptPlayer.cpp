#include "tests/fuzz/ScriptPlayer.h"

#include <cstdint>
#include <string>
#include <utility>

#include "host/dictionary/ExcelTerminology.h"
#include "tests/fuzz/Promises.h"

namespace quorin::fuzz {
namespace {

AppleEventReply error(int number, std::string message = {}) {
  return {std::nullopt, AppleEventError{number, std::move(message), std::nullopt}};
}

AppleEventDescriptor grid() {
  using Descriptor = AppleEventDescriptor;
  Descriptor::Items rows;
  for (int row = 0; row < 3; ++row) {
    Descriptor::Items cells;
    cells.push_back(Descriptor::real(row + 0.5));
    cells.push_back(Descriptor::text("b"));
    cells.push_back(Descriptor::missingValue());
    rows.push_back(Descriptor::list(std::move(cells)));
  }
  return Descriptor::list(std::move(rows));
}

// Excel's words, and answers by turns.
class Answering : public script::Application, public script::Applications {
 public:
  std::string_view name() const override { return "Microsoft Excel"; }
  const script::Terminology& terminology() const override { return host::excelTerminology(); }
  bool isRunning() override { return true; }
  Application* named(std::string_view wanted) override { return wanted == name() ? this : nullptr; }
  Application* identified(std::string_view id) override {
    return id == "com.microsoft.Excel" ? this : nullptr;
  }

  AppleEventReply send(const AppleEvent& event, std::chrono::milliseconds) override {
    using Descriptor = AppleEventDescriptor;
    turn_ = turn_ * 1664525U + 1013904223U + event.eventID;
    const Descriptor* direct = event.parameter(keyDirectObject);
    switch ((turn_ >> 24U) % 16U) {
      case 0:
        return {};
      case 1:
        return error(-1728);
      case 2:
        return error(-1708, "odd");
      case 3:
        return {std::nullopt,
                AppleEventError{-10006, "", direct ? *direct : Descriptor::integer(1)}};
      case 4:
        return {Descriptor::missingValue(), {}};
      case 5:
        return {Descriptor::list({}), {}};
      case 6:
        return {grid(), {}};
      case 7:
        return {Descriptor::boolean(true), {}};
      case 8:
        return {Descriptor::real(2.5), {}};
      case 9:
      case 10:
        return {Descriptor::text("$A$1:$B$2"), {}};
      case 11:
      case 12:
        // What is asked for is answered as itself, as Excel does with its objects.
        return {direct ? *direct : Descriptor::null(), {}};
      case 13:
        return {Descriptor::enumerator(fourCharCode("yes ")), {}};
      default:
        return {Descriptor::integer(2), {}};
    }
  }

  void begin() { turn_ = 0; }

 private:
  std::uint32_t turn_ = 0;
};

// What handlers are called with.
AppleEventDescriptor::Items arguments() {
  using Descriptor = AppleEventDescriptor;
  Descriptor::Items items;
  items.push_back(grid());
  items.push_back(Descriptor::text("A1"));
  items.push_back(Descriptor::integer(2));
  items.push_back(grid());
  items.push_back(Descriptor::text("A1"));
  return items;
}

}  // namespace

bool play(std::string_view source) {
  static Answering excel;
  excel.begin();
  return compileAndRun(source, excel, arguments());
}

}  // namespace quorin::fuzz
