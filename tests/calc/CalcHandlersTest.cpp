// Every handler that Calc serves, asked the same as on the spreadsheet in memory. What Calc answers
// otherwise stands in docs/differences.md.
#include <gtest/gtest.h>
#include <map>

#include "host/model/ExcelObjectModel.h"
#include "tests/calc/CalcFixture.h"
#include "tests/kit/scripts/EngineConversation.h"

namespace quorin {
namespace {

struct Group {
  const char* name;
  std::vector<HandlerRequest> (*requests)();
  std::map<std::string, std::string> differences = {};
};

void PrintTo(const Group& group, std::ostream* out) {
  *out << group.name;
}

class CalcHandlers : public testing::TestWithParam<Group> {};

TEST_P(CalcHandlers, AnswerAsOnEverySpreadsheet) {
  host::Spreadsheet& calc = host::calc::SharedOffice::spreadsheet();
  const std::string book = host::calc::SharedOffice::open(fakes::knownWorkbook());
  const auto before = calc.workbooks();
  const auto conversation =
      engineConversation(std::make_unique<host::ExcelObjectModel>(calc), calc, book);
  std::size_t met = 0;
  for (const HandlerRequest& request : GetParam().requests()) {
    const auto difference = GetParam().differences.find(described(request));
    const bool differs = difference != GetParam().differences.end();
    EXPECT_EQ(conversation->answer(request),
              differs ? difference->second : conversation->expected(request))
        << described(request);
    met += differs ? 1 : 0;
  }
  EXPECT_EQ(met, GetParam().differences.size());
  EXPECT_EQ(calc.workbooks(), before);
}

INSTANTIATE_TEST_SUITE_P(Groups, CalcHandlers,
                         testing::Values(Group{"Cells",
                                               cellRequests,
                                               {{R"j(qx_dependents ["B3"])j", R"j("$B$4,$C$3")j"}}},
                                         Group{"Ranges", rangeRequests}, Group{"Map", mapRequests},
                                         Group{"Deep", deepRequests}, Group{"Marks", markRequests},
                                         Group{"Reveal", revealRequests}),
                         [](const testing::TestParamInfo<Group>& group) {
                           return group.param.name;
                         });

}  // namespace
}  // namespace quorin
