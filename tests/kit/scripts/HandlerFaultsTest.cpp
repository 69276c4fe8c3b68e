// An error at every event of every handler in turn: nothing is left of it but the error, and no
// answer but the error or the right one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

#include "host/Address.h"
#include "host/model/ExcelObjectModel.h"
#include "tests/fakes/MemorySpreadsheet.h"
#include "tests/fakes/QuirkyExcel.h"
#include "tests/kit/scripts/EngineConversation.h"

namespace quorin {
namespace {

struct Group {
  const char* name;
  std::vector<HandlerRequest> (*requests)();
};

void PrintTo(const Group& group, std::ostream* out) {
  *out << group.name;
}

enum class Fate { notCarriedOut, answerLost };

class HandlerFaults : public testing::TestWithParam<Group> {
 protected:
  static constexpr int timedOut = -1712;
  static constexpr const char* sentinel = "=\"QXZ\"=\"QXZ\"";

  HandlerFaults() {
    auto owned = std::make_unique<fakes::MemorySpreadsheet>();
    memory_ = owned.get();
    reset();
    auto excel = std::make_unique<fakes::QuirkyExcel>(
        std::make_unique<host::ExcelObjectModel>(std::move(owned)), fakes::ExcelQuirks{});
    excel_ = excel.get();
    conversation_ = engineConversation(std::move(excel), *memory_, "Known.xlsx");
  }

  // Two workbooks of the user's, the first of them active, so that closing another one brings the
  // wrong one forward. Something is marked and something hidden.
  void reset() {
    for (const std::string& book : memory_->workbooks()) memory_->close(book);
    memory_->open(fakes::knownWorkbook());
    memory_->open({.name = "Other.xlsx", .sheets = {{"Sheet1", {}}}});
    memory_->goTo(on("Data", "B4:C4"));
    memory_->addFormatCondition(on("Blank", "B2,B4:C5,E7"), sentinel);
    memory_->setHidden(on("Blank", "4:4"), host::Axis::rows, true);
    memory_->script.clear();
  }

  static host::RangeRef on(const char* sheet, const char* address) {
    return {{"Known.xlsx", sheet}, host::parseA1(address).value()};
  }

  // What is answered when nothing fails, and how many events that takes.
  struct Course {
    std::string answer;
    int events = 0;
  };

  Course courseOf(const HandlerRequest& request) {
    reset();
    excel_->forget();
    Course course;
    course.answer = conversation_->answer(request);
    course.events = static_cast<int>(excel_->events().size());
    return course;
  }

  void failAt(int number, Fate fate, int error, const HandlerRequest& request,
              const std::string& right) {
    SCOPED_TRACE(described(request) + ", event " + std::to_string(number) +
                 (fate == Fate::answerLost ? " carried out but lost" : "") + ", error " +
                 std::to_string(error));
    reset();
    excel_->forget();
    HandlerRequest there = request;
    there.sheet.clear();
    const auto before = memory_->selection();
    const auto cellBefore = memory_->activeCell();
    const AppleEventError failure{error, "Something failed.", {}};
    if (fate == Fate::answerLost)
      excel_->loseAnswerOf(number, failure);
    else
      excel_->failAt(number, failure);
    const std::string answer = conversation_->answer(there);
    if (error == timedOut && !mayLeaveOut(request.handler)) {
      EXPECT_THAT(answer, testing::AnyOf("error -1712", right));
    }
    EXPECT_EQ(memory_->activeWorkbook(), "Known.xlsx");
    if (!moves(request.handler)) {
      EXPECT_EQ(memory_->selection(), before);
      EXPECT_EQ(memory_->activeCell(), cellBefore);
    }
    excel_->forget();
    EXPECT_EQ(conversation_->answer({"qx_workbookcount", {}, "2"}), "2");
    for (const host::FormatCondition& each : memory_->formatConditions(on("Blank", "1:1048576")))
      EXPECT_EQ(each.formula, sentinel);
  }

  // A used range that could not be read, for whatever reason, is not told.
  static bool mayLeaveOut(const std::string& handler) { return handler == "qx_workbookmap"; }

  // What is there to move the user.
  static bool moves(const std::string& handler) {
    return std::set<std::string>{"qx_select", "qx_activate", "qx_revealscroll"}.contains(handler);
  }

  fakes::MemorySpreadsheet* memory_ = nullptr;
  fakes::QuirkyExcel* excel_ = nullptr;
  std::unique_ptr<HandlerConversation> conversation_;
};

TEST_P(HandlerFaults, LeaveNoWorkbookAndNoOtherSelection) {
  int faults = 0;
  std::set<std::string> done;
  for (const HandlerRequest& request : GetParam().requests()) {
    if (!done.insert(described(request)).second) continue;
    const Course course = courseOf(request);
    for (int number = 1; number <= course.events; ++number)
      for (const Fate fate : {Fate::notCarriedOut, Fate::answerLost})
        for (const int error : {timedOut, -1728}) {
          failAt(number, fate, error, request, course.answer);
          ++faults;
        }
    if (HasFailure()) return;
  }
  EXPECT_GT(faults, 0);
  RecordProperty("faults", faults);
}

INSTANTIATE_TEST_SUITE_P(Groups, HandlerFaults,
                         testing::Values(Group{"Cells", cellRequests},
                                         Group{"Ranges", rangeRequests}, Group{"Map", mapRequests},
                                         Group{"Deep", deepRequests}, Group{"Marks", markRequests},
                                         Group{"Reveal", revealRequests}),
                         [](const testing::TestParamInfo<Group>& group) {
                           return group.param.name;
                         });

}  // namespace
}  // namespace quorin
