#include <gtest/gtest.h>
#include <stdexcept>

#include "host/Address.h"
#include "host/calc/reveal/RowTraces.h"
#include "kit/value/JSONText.h"
#include "kit/value/Marshal.h"

namespace quorin::host::calc {
namespace {

const SheetRef sheet{"Plan.xlsx", "Q1"};

Area rows(int first, int last) {
  return {first, 1, last, maxColumn};
}

AreaTrace traced(RowDigest digest) {
  const RowTrace trace{{0, digest, 0xfedcba9876543210, 1, 2}, 9};
  return {trace, trace};
}

class Traces : public testing::Test {
 protected:
  TraceKeeping keeping() {
    return {[this] { return kept; },
            [this](const JSONValue::Array& all) {
              if (full) throw std::runtime_error("no space");
              kept = all;
              ++writes;
            }};
  }

  // What a process finds that starts now.
  bool isKept(const Area& area, Axis axis, const AreaTrace& trace) {
    RowTraces next(keeping());
    const AreaTrace* const found = next.find(sheet, area, axis);
    return found && *found == trace;
  }

  JSONValue::Array kept;
  bool full = false;
  int writes = 0;
  RowTraces traces{keeping()};
};

TEST_F(Traces, AreFoundByTheNextProcess) {
  AreaTrace trace = traced(7);
  traces.remember(sheet, rows(5, 5), Axis::rows, trace);
  EXPECT_TRUE(isKept(rows(5, 5), Axis::rows, trace));
  trace.last.last = 8;
  traces.remember(sheet, {1, 3, maxRow, 4}, Axis::columns, trace);
  traces.flush();
  EXPECT_TRUE(isKept({1, 3, maxRow, 4}, Axis::columns, trace));
  EXPECT_FALSE(isKept({1, 3, maxRow, 3}, Axis::columns, trace));
  EXPECT_FALSE(isKept({3, 1, 4, maxColumn}, Axis::rows, trace));
}

TEST_F(Traces, OfOneSheetAreNotThoseOfAnother) {
  traces.remember(sheet, rows(5, 5), Axis::rows, traced(7));
  EXPECT_NE(traces.find(sheet, rows(5, 5), Axis::rows), nullptr);
  EXPECT_EQ(traces.find({"Plan.xlsx", "Q2"}, rows(5, 5), Axis::rows), nullptr);
  EXPECT_EQ(traces.find({"Other.xlsx", "Q1"}, rows(5, 5), Axis::rows), nullptr);
}

TEST_F(Traces, HoldTheLastThatHadTheNumbers) {
  traces.remember(sheet, rows(5, 5), Axis::rows, traced(7));
  traces.remember(sheet, rows(5, 5), Axis::rows, traced(8));
  EXPECT_EQ(*traces.find(sheet, rows(5, 5), Axis::rows), traced(8));
  traces.forget(sheet, rows(5, 5), Axis::rows);
  EXPECT_EQ(traces.find(sheet, rows(5, 5), Axis::rows), nullptr);
}

TEST_F(Traces, AreWrittenBeforeTheFirstRowIsShownAndOnceMoreForTheOthers) {
  for (int row = 1; row <= 200; ++row) {
    traces.remember(sheet, rows(row, row), Axis::rows, traced(7));
    ASSERT_EQ(writes, 1) << row;
  }
  EXPECT_EQ(traces.flush(), "");
  EXPECT_EQ(writes, 2);
  EXPECT_EQ(kept.size(), 200U);
  EXPECT_EQ(traces.flush(), "");
  EXPECT_EQ(writes, 2) << "nothing has changed";
  traces.remember(sheet, rows(201, 201), Axis::rows, traced(7));
  EXPECT_EQ(writes, 3) << "of the next handler";
}

TEST_F(Traces, GoFromTheFileWithTheirRows) {
  traces.remember(sheet, rows(5, 5), Axis::rows, traced(7));
  traces.flush();
  traces.forget(sheet, rows(5, 5), Axis::rows);
  EXPECT_EQ(traces.flush(), "");
  EXPECT_TRUE(kept.empty());
}

TEST_F(Traces, RefuseARowThatCannotBeRecorded) {
  full = true;
  try {
    traces.remember(sheet, rows(5, 5), Axis::rows, traced(7));
    FAIL() << "remembered";
  } catch (const SpreadsheetError& error) {
    EXPECT_EQ(error.number(), -10000);
    EXPECT_STREQ(error.what(), "The shown lines cannot be recorded: no space");
  }
  EXPECT_EQ(traces.find(sheet, rows(5, 5), Axis::rows), nullptr);
}

TEST_F(Traces, AreWrittenWhenThatIsPossibleAgain) {
  traces.remember(sheet, rows(5, 5), Axis::rows, traced(7));
  full = true;
  traces.remember(sheet, rows(6, 6), Axis::rows, traced(8));
  EXPECT_EQ(traces.flush(), "The shown lines cannot be recorded: no space");
  full = false;
  EXPECT_EQ(traces.flush(), "");
  EXPECT_TRUE(isKept(rows(6, 6), Axis::rows, traced(8)));
}

TEST_F(Traces, AreTheThousandLatest) {
  for (int row = 1; row <= 1001; ++row)
    traces.remember(sheet, rows(row, row), Axis::rows, traced(7));
  EXPECT_EQ(traces.find(sheet, rows(1, 1), Axis::rows), nullptr);
  EXPECT_NE(traces.find(sheet, rows(2, 2), Axis::rows), nullptr);
  EXPECT_NE(traces.find(sheet, rows(1001, 1001), Axis::rows), nullptr);
}

TEST_F(Traces, SkipRecordsThatAreNone) {
  const std::string good =
      R"({"book":"Plan.xlsx","first":5,"firstTrace":["0","7","fedcba9876543210","1","2",9],)"
      R"("last":5,"lines":"rows","sheet":"Q1"})";
  const auto text = [&](const std::string& old, const std::string& changed) {
    std::string record = good;
    return record.replace(record.find(old), old.size(), changed);
  };
  for (const std::string& record :
       {good, std::string("1"), text("\"rows\"", "\"lines\""), text("\"first\":5", "\"first\":-1"),
        text("\"0\"", "\"0x\""), text("\"7\"", "7"), text(",9]", "]"), text("\"sheet\"", "\"s\""),
        text("\"last\":5", "\"last\":6")}) {
    kept = *parseJSON("[" + record + "]").value->array();
    EXPECT_EQ(isKept(rows(5, 5), Axis::rows, traced(7)), record == good) << record;
  }
}

TEST(TracesWithoutAPlace, AreNone) {
  RowTraces traces;
  traces.remember(sheet, rows(5, 5), Axis::rows, traced(7));
  EXPECT_EQ(traces.find(sheet, rows(5, 5), Axis::rows), nullptr);
  traces.forget(sheet, rows(5, 5), Axis::rows);
  EXPECT_EQ(traces.flush(), "");
}

}  // namespace
}  // namespace quorin::host::calc
