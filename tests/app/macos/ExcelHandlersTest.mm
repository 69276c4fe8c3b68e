// Every handler against the Excel of this Mac, asked the same as on the spreadsheet in memory, in
// scratch workbooks that are closed without saving. Close your own workbooks first. What Excel
// answers otherwise is what we want to know: each difference fails with both answers.
#include <gtest/gtest.h>

#import "app/macos/AppleScriptRunner.h"
#include "tests/kit/scripts/ExcelScratch.h"
#include "tests/kit/scripts/HandlerConversation.h"

namespace quorin {
namespace {

struct Group {
  const char* name;
  std::vector<HandlerRequest> (*requests)();
};

void PrintTo(const Group& group, std::ostream* out) {
  *out << group.name;
}

class ExcelHandlers : public testing::TestWithParam<Group> {
 protected:
  void SetUp() override {
    const auto error = scratch_.compile(ExcelScratch::source());
    ASSERT_FALSE(error) << error->message.value_or("");
  }

  AppleScriptRunner scratch_;
};

TEST_P(ExcelHandlers, AnswerAsOnEverySpreadsheet) {
  ExcelScratch workbook(scratch_, fakes::knownWorkbook());
  HandlerConversation conversation(
      std::make_unique<AppleScriptRunner>(),
      [&](const std::string& sheet, const std::string& selection) {
        workbook.goTo(sheet, selection);
      },
      workbook.book());
  for (const HandlerRequest& request : GetParam().requests()) {
    EXPECT_EQ(conversation.answer(request), conversation.expected(request)) << described(request);
  }
  EXPECT_EQ(conversation.answer({"qx_workbookcount", {}, "1"}), "1")
      << "a scratch workbook is left, or one of yours was open";
}

INSTANTIATE_TEST_SUITE_P(Groups, ExcelHandlers,
                         testing::Values(Group{"Cells", cellRequests},
                                         Group{"Ranges", rangeRequests}, Group{"Map", mapRequests},
                                         Group{"Deep", deepRequests}, Group{"Marks", markRequests},
                                         Group{"Reveal", revealRequests}),
                         [](const testing::TestParamInfo<Group>& group) {
                           return group.param.name;
                         });

}  // namespace
}  // namespace quorin
