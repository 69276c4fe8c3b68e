// Which expressions may be evaluated without a copy of the workbook.
#include <gtest/gtest.h>

#include "host/calc/ConstantExpression.h"

namespace quorin::host::calc {
namespace {

TEST(ConstantExpression, TakesNumbersTextsAndOperators) {
  for (const char* text :
       {"1/0", "=1+2*3^-2", "1E5", "2.5e-3%", "\"a\"&\"b\"", "\"say \"\"A1\"\"\"", "{1,2;3,4}*2",
        "TRUE", "1<>false", "IFERROR(1/0,\"x\")", "IFERROR(1/0,\"__ERR:\"&ERROR.TYPE(1/0))"}) {
    EXPECT_TRUE(isConstantExpression(text)) << text;
  }
}

TEST(ConstantExpression, LeavesWhatAWorkbookCouldMean) {
  for (const char* text :
       {"",     "A1",     "1+A1",           "rate",       "SUM(1,2)",    "1:1",
        "$A$1", "'S'!A1", "S!A1",           "[Book]S!A1", "#REF!",       "Table[Column]",
        "@A1",  "NOW()",  "DATE(2020,1,1)", "true1",      "IFERRORS(1)", "\xC3\xA4",
        "1E",   "1_000",  "\"open"}) {
    EXPECT_FALSE(isConstantExpression(text)) << text;
  }
}

}  // namespace
}  // namespace quorin::host::calc
